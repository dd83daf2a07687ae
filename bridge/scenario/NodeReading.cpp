// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/scenario/ScenarioParts.h"

#include <array>
#include <cmath>
#include <limits>

namespace nightjar::bridge {
namespace {

constexpr NumberRange metersRange{0, 1'000'000};
constexpr NumberRange paceRange{0.01, 300};
constexpr NumberRange timeRange{0, longestSeconds};
constexpr NumberRange intervalRange{0.1, longestSeconds};

std::vector<Place> readWay(ObjectReader& reader) {
    std::vector<Place> way;
    reader.require("way").each("way", [&](const json::JsonValue& value, const std::string& path) {
        if (const auto place = readPlace(value, path, reader.problem()))
            way.push_back(*place);
    });
    if (way.empty())
        reader.complain("way", "must name at least one place");
    return way;
}

double readPace(ObjectReader& reader) {
    return reader.require("speed").number("speed", paceRange).value_or(1);
}

ParkedPlan readParked(ObjectReader& reader) {
    ParkedPlan plan;
    plan.jitterMeters = reader.number("jitter", metersRange).value_or(0);
    double last = 0;
    const auto readTime = [&](ObjectReader& item) {
        const double at = item.require("at").number("at", timeRange).value_or(last);
        if (at < last)
            item.complain("at", "must not be before the entry above it");
        return last = at;
    };
    reader.eachObject("outliers", [&](ObjectReader& outlier) {
        const double at = readTime(outlier);
        plan.outliers.push_back({at, outlier.require("meters").number("meters", metersRange).value_or(0)});
    });
    last = 0;
    reader.eachObject("rides", [&](ObjectReader& ride) {
        const double at = readTime(ride);
        const double pace = readPace(ride);
        plan.rides.push_back({at, pace, readWay(ride)});
    });
    return plan;
}

void readPosition(ObjectReader& reader, NodePlan& node) {
    auto position = reader.object("position");
    if (!position)
        return;
    node.position = Place{
        position->require("latitude").number("latitude", {-90, 90}).value_or(0),
        position->require("longitude").number("longitude", {-180, 180}).value_or(0),
    };
    node.altitude = position->integer<std::int32_t>("altitude", -1000, 100'000);
    position->finish();
}

void readBattery(ObjectReader& reader, NodePlan& node) {
    auto battery = reader.object("battery");
    if (!battery)
        return;
    node.battery = BatteryPlan{
        battery->require("level").number("level", {0, 101}).value_or(100),
        battery->number("drainPerHour", {0, 10'000}).value_or(0),
    };
    battery->finish();
}

} // namespace

std::optional<Place> readPlace(const json::JsonValue& value, const std::string& path, Problem& problem) {
    constexpr double nowhere = std::numeric_limits<double>::infinity();
    const auto* pair = value.get<json::JsonValue::Array>();
    const auto degrees = [&](std::size_t index) {
        return pair && pair->size() == 2 ? (*pair)[index].number().value_or(nowhere) : nowhere;
    };
    const Place place{degrees(0), degrees(1)};
    if (std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 180)
        return place;
    problem.report(path, "must be a pair of latitude and longitude in degrees");
    return std::nullopt;
}

MovementPlan readMovement(ObjectReader& reader) {
    static constexpr std::array<std::string_view, 3> kinds{"parked", "path", "wander"};
    const auto kind = reader.require("kind").choice("kind", kinds);
    if (kind == 0)
        return readParked(reader);
    if (kind == 1) {
        const double pace = readPace(reader);
        return PathPlan{pace, readWay(reader)};
    }
    if (kind == 2) {
        const double pace = readPace(reader);
        return WanderPlan{pace, reader.require("radius").number("radius", metersRange).value_or(0)};
    }
    return {};
}

NodePlan readNode(ObjectReader& reader) {
    NodePlan node;
    node.number = reader.require("number").integer<std::uint32_t>("number", 1, 0xFFFF'FFFE).value_or(0);
    node.longName = reader.text("longName").value_or("");
    node.shortName = reader.text("shortName").value_or("");
    node.hardware = reader.text("hardware").value_or("");
    readBattery(reader, node);
    node.signalToNoise = reader.number("signalToNoise", {-64, 64});
    node.hopsAway = reader.integer<std::uint32_t>("hops", 0, 7);
    node.heardSecondsAgo = reader.number("heardSecondsAgo", {0, 315'360'000});
    readPosition(reader, node);
    if (auto movement = reader.object("movement")) {
        if (!node.position)
            reader.complain("movement", "needs a position to start from");
        node.movement = readMovement(*movement);
        movement->finish();
    }
    node.reportWorldSeconds = reader.number("every", intervalRange);
    node.movingReportWorldSeconds = reader.number("everyMoving", intervalRange);
    if (node.movingReportWorldSeconds && !node.reportWorldSeconds)
        reader.complain("everyMoving", "needs every");
    return node;
}

} // namespace nightjar::bridge
