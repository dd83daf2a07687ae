// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/protocol/ProtocolServer.h"
#include "bridge/protocol/Answers.h"

#include <gmock/gmock.h>

namespace nightjar::bridge {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Event = MeshtasticBridgeEvent;

/// Remembers requests; the test answers them.
struct IdleRadio final : Radio {
    void connect(const Uuid& request, Moment) override { asked = request; }
    void sendText(const Uuid&, const TextOrder& order, Moment) override { orders.push_back(order); }
    void readSettings(const Uuid&, Moment) override {}
    void applySettings(const Uuid&, const MeshtasticRadioSettings&, Moment) override {}
    void disconnect(const Uuid&, Moment) override {}
    RadioWait waits() const override { return {}; }
    void advance(Moment, short) override {}

    Uuid asked;
    std::vector<TextOrder> orders;
};

class ProtocolServerTest : public testing::Test, private LineSink {
protected:
    Uuid send(MeshtasticBridgeRequest request) {
        request.requestID = Uuid::random();
        auto line = encodeLine(request).value();
        line.pop_back();
        server.handleLine(line, {});
        return request.requestID;
    }
    Uuid connect() {
        MeshtasticBridgeRequest request;
        request.port = "/dev/radio";
        return send(request);
    }
    std::vector<MeshtasticBridgeResponse> take() { return std::exchange(m_lines, {}); }

    IdleRadio* radio = nullptr;
    RadioListener* listener = nullptr;
    ProtocolServer server{*this, [this](const std::string&, RadioListener& given) {
                              auto made = std::make_unique<IdleRadio>();
                              radio = made.get();
                              listener = &given;
                              return std::expected<std::unique_ptr<Radio>, std::string>(std::move(made));
                          }};

private:
    void writeLine(std::string_view line) override {
        line.remove_suffix(1);
        m_lines.push_back(makeBridgeDecoder().decode<MeshtasticBridgeResponse>(line).value());
    }
    bool hasRoom() const override { return true; }

    std::vector<MeshtasticBridgeResponse> m_lines;
};

MeshtasticBridgeRequest text() {
    MeshtasticBridgeRequest request;
    request.command = MeshtasticBridgeCommand::sendText;
    request.text = "hello";
    return request;
}

TEST_F(ProtocolServerTest, takesOrdersOnlyBetweenConnectedAndDisconnected) {
    const Uuid request = connect();
    send(text());
    EXPECT_EQ(take().at(0).error, "No radio is connected.") << "the handshake still runs";

    listener->emit(connectedAnswer(request, "/dev/radio"));
    send(text());
    EXPECT_EQ(radio->orders.size(), 1U);
    EXPECT_EQ(take().size(), 1U);

    MeshtasticBridgeResponse gone;
    gone.event = Event::disconnected;
    listener->emit(gone);
    send(text());
    EXPECT_EQ(radio->orders.size(), 1U);
    EXPECT_EQ(take().back().error, "No radio is connected.");
}

TEST_F(ProtocolServerTest, aFailedHandshakeIsNoConnection) {
    listener = nullptr;
    const Uuid request = connect();
    listener->emit(errorAnswer(request, "No answer."));
    send(text());
    EXPECT_THAT(radio->orders, IsEmpty());
}

TEST_F(ProtocolServerTest, aConnectThatIsOvertakenIsAnsweredToo) {
    const Uuid first = connect();
    const Uuid second = connect();
    auto lines = take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].requestID, first);
    EXPECT_EQ(lines[0].event, Event::error);

    MeshtasticBridgeRequest release;
    release.command = MeshtasticBridgeCommand::disconnect;
    send(release);
    lines = take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].requestID, second);
}

TEST_F(ProtocolServerTest, releasingNoRadioIsNoError) {
    MeshtasticBridgeRequest release;
    release.command = MeshtasticBridgeCommand::disconnect;
    const Uuid request = send(release);
    const auto lines = take();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].requestID, request);
    EXPECT_EQ(lines[0].event, Event::ready);
}

} // namespace
} // namespace nightjar::bridge
