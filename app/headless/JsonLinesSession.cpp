// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/JsonLinesSession.h"

#include "app/headless/JsonForm.h"
#include "app/headless/LineInput.h"

#include <QMetaObject>

#include <algorithm>

namespace nightjar::headless {
namespace {

std::string countSentence(const Operation& operation, std::size_t given) {
    const auto fewest = operation.fewestArguments;
    const auto most = operation.mostArguments;
    std::string wanted = most == 0 ? "no arguments"
                         : fewest == most
                             ? std::to_string(most) + (most == 1 ? " argument" : " arguments")
                             : std::to_string(fewest) + " to " + std::to_string(most) + " arguments";
    return operation.name + " takes " + wanted + ", not " + std::to_string(given) + '.';
}

} // namespace

/// A field that is watched, and what was last printed of it.
struct JsonLinesSession::Watched : ElementSink {
    Watched(const ControllerTable& owner, Field& watched, LineSink& sink)
        : table(owner), field(watched), output(sink) {}

    [[nodiscard]] bool isFull() const override { return output.isFull(); }
    void element(std::string_view id, std::string_view value) override {
        line.clear();
        json::JsonWriter writer(line);
        writer.beginObject();
        writer.key("type");
        writer.string("element");
        writer.key("controller");
        writer.string(table.name);
        writer.key("field");
        writer.string(field.name);
        writer.key("id");
        writer.raw(id);
        writer.key("value");
        writer.raw(value);
        writer.endObject();
        output.send(line);
    }

    void printWhole() {
        std::string value;
        json::JsonWriter valueWriter(value);
        field.write(valueWriter);
        if (value == printed)
            return;
        line.clear();
        json::JsonWriter writer(line);
        writer.beginObject();
        writer.key("type");
        writer.string("published");
        writer.key("controller");
        writer.string(table.name);
        writer.key("field");
        writer.string(field.name);
        writer.key("value");
        writer.raw(value);
        writer.endObject();
        output.send(line);
        printed = std::move(value);
    }

    const ControllerTable& table;
    Field& field;
    LineSink& output;
    std::string printed; ///< the value as JSON; empty before the first time
    std::string line;
    bool changed = false;
};

JsonLinesSession::JsonLinesSession(std::vector<ControllerTable> tables, LineSink& output)
    : m_tables(std::move(tables)), m_output(output) {}

JsonLinesSession::~JsonLinesSession() = default;

void JsonLinesSession::start() {
    for (ControllerTable& table : m_tables) {
        for (Field& field : table.fields) {
            if (!field.observe)
                continue;
            Watched& watched = m_watched.emplace_back(table, field, m_output);
            field.observe(this, [this, &watched] { noteChange(watched); });
            watched.changed = true;
            m_changed.push_back(&watched);
        }
    }
    // The short values first: the lists may be long.
    std::ranges::stable_partition(m_changed,
                                  [](const Watched* watched) { return !watched->field.tellChanges; });
    flush();
}

void JsonLinesSession::noteChange(Watched& watched) {
    if (watched.changed)
        return;
    watched.changed = true;
    m_changed.push_back(&watched);
    if (m_scheduled)
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &JsonLinesSession::flush, Qt::QueuedConnection);
}

void JsonLinesSession::flush() {
    m_scheduled = false;
    while (!m_changed.empty() && !m_output.isFull()) {
        Watched& watched = *m_changed.front();
        m_changed.pop_front();
        watched.changed = false;
        if (print(watched))
            continue;
        // The rest of a long list goes to the end of the queue, so that it never starves the others.
        watched.changed = true;
        m_changed.push_back(&watched);
    }
}

/// False when the reader fell behind before everything was printed.
bool JsonLinesSession::print(Watched& watched) {
    if (watched.field.tellChanges)
        return watched.field.tellChanges(watched);
    watched.printWhole();
    return true;
}

void JsonLinesSession::handle(std::string_view line) {
    const auto request = JsonLinesRequest::parse(line);
    if (!request)
        return refuse(request.error().id, request.error().reason);
    const auto table = std::ranges::find(m_tables, request->controller(), &ControllerTable::name);
    if (table == m_tables.end()) {
        return refuse(request->id(), "There is no controller \"" + request->controller() + "\".");
    }
    carryOut(*request, *table);
}

void JsonLinesSession::carryOut(const JsonLinesRequest& request, const ControllerTable& table) {
    const auto arguments = request.arguments();
    if (request.kind() == JsonLinesRequest::Kind::operation) {
        const auto* operation = table.operation(request.name());
        if (!operation)
            return refuse(request.id(), table.name + " has no operation \"" + request.name() + "\".");
        if (arguments.size() < operation->fewestArguments || arguments.size() > operation->mostArguments) {
            return refuse(request.id(), countSentence(*operation, arguments.size()));
        }
        const auto outcome = operation->call(arguments);
        if (!outcome)
            return refuse(request.id(), outcome.error());
        if (outcome->empty())
            return answer("done", request.id());
        return answer("value", request.id(), "value", *outcome);
    }

    const auto* field = table.field(request.name());
    if (!field)
        return refuse(request.id(), table.name + " has no field \"" + request.name() + "\".");
    if (request.kind() == JsonLinesRequest::Kind::get) {
        std::string value;
        json::JsonWriter writer(value);
        field->write(writer);
        return answer("value", request.id(), "value", value);
    }
    if (!field->set)
        return refuse(request.id(), field->name + " can only be read.");
    const auto outcome = field->set(arguments.front());
    if (!outcome)
        return refuse(request.id(), outcome.error());
    answer("done", request.id());
}

void JsonLinesSession::refuseTooLongLine() {
    refuse({}, "The line is longer than " + std::to_string(LineInput::longestLine) + " bytes.");
}

void JsonLinesSession::tell(const Notification& notification) {
    std::string line;
    json::JsonWriter writer(line);
    writer.beginObject();
    writer.key("type");
    writer.string("notification");
    writer.key("identifier");
    writer.string(notification.identifier);
    writer.key("title");
    writer.string(notification.title);
    writer.key("body");
    writer.string(notification.body);
    writer.key("sound");
    writer.string(notification.sound == NotificationSound::critical ? "critical" : "default");
    writer.endObject();
    m_output.send(line);
}

void JsonLinesSession::answer(std::string_view type, std::string_view id, std::string_view key,
                              std::string_view json) {
    std::string line;
    json::JsonWriter writer(line);
    writer.beginObject();
    writer.key("type");
    writer.string(type);
    if (!id.empty()) {
        writer.key("id");
        writer.raw(id);
    }
    if (!key.empty()) {
        writer.key(key);
        writer.raw(json);
    }
    writer.endObject();
    m_output.send(line);
}

void JsonLinesSession::refuse(std::string_view id, std::string_view reason) {
    answer("refused", id, "reason", jsonText(std::string(reason)));
}

} // namespace nightjar::headless
