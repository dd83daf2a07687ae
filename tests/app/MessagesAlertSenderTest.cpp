// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/alerts/MessagesAlertSender.h"

#include "platform/simulated/FakeMessageTransport.h"

#include <gtest/gtest.h>

#include <vector>

namespace nightjar {
namespace {

TEST(MessagesAlertSenderTest, theScriptStaysWellFormedWhateverIsSent) {
    FakeMessageTransport transport;
    const std::string text = " Say \"hi\"\\ to\r\nKeys\\\" & end\\";

    ASSERT_TRUE(MessagesAlertSender::send(transport, text, " \t+31 6 \"1\" \n"));

    const std::vector<OutgoingText> expected{
        {.recipient = "+31 6 \"1\"", .text = text, .script = R"(tell application "Messages"
    set targetService to first service whose service type = iMessage
    set targetRecipient to buddy "+31 6 \"1\"" of targetService
    send " Say \"hi\"\\ to\r\nKeys\\\" & end\\" to targetRecipient
end tell)"}};
    EXPECT_EQ(transport.sent(), expected);
}

TEST(MessagesAlertSenderTest, aRefusalIsTold) {
    struct Row {
        std::optional<MessageTransportError> refusal;
        std::string recipient;
        std::string description;
    };
    const std::string failed = "Messages could not send the alert: ";
    const std::vector<Row> rows{
        {MessageTransportError{.message = "No such buddy."}, "a@b.c", failed + "No such buddy."},
        {MessageTransportError{}, "a@b.c", failed + "Unknown automation error."},
        {MessageTransportError{.isScriptInvalid = true, .message = "Syntax."}, "a@b.c",
         failed + "The automation script could not be created."},
        {std::nullopt, " \n\t ", "Enter an iPhone phone number or Apple Account email address first."},
        {std::nullopt, "", "Enter an iPhone phone number or Apple Account email address first."}};
    for (const Row& row : rows) {
        FakeMessageTransport transport;
        transport.refuse(row.refusal);
        const auto sent = MessagesAlertSender::send(transport, "Hello", row.recipient);
        ASSERT_FALSE(sent) << row.description;
        EXPECT_EQ(sent.error().errorDescription(), row.description);
        EXPECT_TRUE(transport.sent().empty());
    }
}

} // namespace
} // namespace nightjar
