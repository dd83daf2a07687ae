// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/BluetoothTable.h"
#include "app/headless/JsonLinesSession.h"
#include "app/headless/ReadableReport.h"
#include "tests/headless/StandIn.h"
#include "tests/support/ModelRig.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <optional>

namespace nightjar::headless {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const Uuid keysId = Uuid::fromText("4B455953-0000-4000-8000-000000000001").value();
const Uuid tagId = Uuid::fromText("54414700-0000-4000-8000-000000000002").value();

BluetoothAdvertisement from(const Uuid& id, std::optional<std::string> name, int rssi = -60) {
    return {.peripheral = id, .peripheralName = std::move(name), .rssi = rssi};
}

class BluetoothLinesTest : public ::testing::Test, protected nightjar::testing::ModelRig {
protected:
    BluetoothLinesTest() {
        create();
        bluetooth.setState(BluetoothRadioState::poweredOn);
    }
    [[nodiscard]] BluetoothTrackerManager& manager() { return model->bluetoothTrackers(); }
    std::vector<std::string> lines() {
        QCoreApplication::processEvents();
        return output.take();
    }

    KeptLines output;
};

class BluetoothJsonLinesTest : public BluetoothLinesTest {
protected:
    BluetoothJsonLinesTest() {
        std::vector<ControllerTable> tables;
        tables.push_back(bluetoothTable(manager()));
        session.emplace(std::move(tables), output);
        session->start();
        output.lines.clear();
    }
    std::string ask(const std::string& request) {
        session->handle(R"({"controller":"BluetoothTrackerManager",)" + request + R"(,"id":1})");
        return output.lines.empty() ? "" : output.lines.back();
    }
    static std::string operation(const std::string& name, const std::string& arguments = {}) {
        return R"("operation":")" + name + R"(","arguments":[)" + arguments + ']';
    }

    std::optional<JsonLinesSession> session;
};

TEST_F(BluetoothJsonLinesTest, aDeviceIsToldWhenItIsHeardAndWhenTheListIsCleared) {
    EXPECT_THAT(ask(operation("startScanning")), HasSubstr("done"));
    bluetooth.hear(from(keysId, "Keys"));
    bluetooth.hear(from(tagId, {}, -80));
    EXPECT_THAT(lines(),
                AllOf(Contains(AllOf(HasSubstr(R"("field":"devices","id":")" + keysId.text()),
                                     HasSubstr(R"("name":"Keys","isMeshtastic":false,"rssi":-60)"),
                                     HasSubstr(R"("trend":"acquiring","band":"nearby")"))),
                      Contains(HasSubstr("Bluetooth device 5441")),
                      Contains(HasSubstr(R"("field":"state","value":"Found 2 Bluetooth devices")"))));

    scheduler.advance(2s);
    bluetooth.hear(from(tagId, {}, -70));
    const auto changed = lines();
    EXPECT_THAT(changed, Contains(HasSubstr(R"("rssi":-70)")));
    EXPECT_THAT(changed, Not(Contains(HasSubstr(keysId.text()))));

    EXPECT_THAT(ask(operation("startScanning")), HasSubstr("done"));
    EXPECT_THAT(lines(), AllOf(Contains(HasSubstr(keysId.text() + R"(","value":null)")),
                               Contains(HasSubstr(tagId.text() + R"(","value":null)"))));
    EXPECT_THAT(ask(R"("get":"devices")"), HasSubstr(R"("value":[])"));
}

TEST_F(BluetoothJsonLinesTest, theWholeWatchCanBeDriven) {
    const std::string keys = '"' + keysId.text() + '"';
    EXPECT_THAT(ask(operation("track", keys)), HasSubstr("was heard in this scan"));
    EXPECT_THAT(ask(operation("setLossAlert", "true," + keys)), HasSubstr("is tracked"));
    EXPECT_THAT(ask(operation("startFinding", R"("keys")")), HasSubstr("takes an identifier"));

    ask(operation("startScanning"));
    bluetooth.hear(from(keysId, "Keys"));
    EXPECT_THAT(ask(operation("track", keys)), HasSubstr("done"));
    EXPECT_THAT(ask(operation("renameTrackedDevice", keys + R"(,"My keys")")), HasSubstr("done"));
    EXPECT_THAT(ask(operation("setLossAlertDelay", "60," + keys)), HasSubstr("done"));
    EXPECT_THAT(ask(operation("setLossAlert", "true," + keys)), HasSubstr("done"));
    EXPECT_THAT(lines(), Contains(AllOf(HasSubstr(R"("field":"trackedDevices")"),
                                        HasSubstr(R"("name":"My keys","discoveredName":"Keys")"),
                                        HasSubstr(R"("lossAlertEnabled":true,"lossAlertDelay":60)"))));

    EXPECT_THAT(ask(operation("startFinding", keys)), HasSubstr("done"));
    EXPECT_THAT(ask(R"("get":"trackedDevice")"), HasSubstr(R"("name":"Keys")"));
    EXPECT_THAT(ask(operation("stopFinding")), HasSubstr("done"));
    EXPECT_THAT(ask(R"("get":"trackedDevice")"), HasSubstr("null"));
    EXPECT_THAT(ask(R"("set":"iMessageRecipient","value":"+1 555 0100")"), HasSubstr("done"));
    EXPECT_THAT(ask(operation("updateIMessageStatus")), HasSubstr("done"));
    EXPECT_THAT(lines(), Contains(HasSubstr("Ready, but off")));
    EXPECT_THAT(ask(operation("stopTracking", keys)), HasSubstr("done"));
    EXPECT_THAT(lines(), Contains(AllOf(HasSubstr("trackedDevices"), HasSubstr(R"("value":null)"))));
}

class BluetoothReportTest : public BluetoothLinesTest {
protected:
    BluetoothReportTest() {
        report.emplace(*model, output, scheduler);
        report->start();
        lines();
    }
    /// The lines about Bluetooth without their time of day.
    std::vector<std::string> news() {
        std::vector<std::string> texts;
        for (const auto& line : lines())
            texts.push_back(line.substr(10));
        return texts;
    }

    std::optional<ReadableReport> report;
};

TEST_F(BluetoothReportTest, tellsWhoIsThereOnceAndOnlyCountsTheNameless) {
    manager().startScanning();
    EXPECT_THAT(news(), ElementsAre("bluetooth: Looking for Bluetooth devices…"));

    bluetooth.hear(from(keysId, "Keys\x1b[2J\nALERT"));
    bluetooth.hear(from(tagId, {}));
    EXPECT_THAT(news(), ElementsAre("bluetooth: Found 2 Bluetooth devices",
                                    AllOf(HasSubstr("Bluetooth device Keys"), HasSubstr("-60 dBm, Nearby"),
                                          Not(HasSubstr("\x1b")), Not(HasSubstr("\n")))));

    scheduler.advance(2s);
    bluetooth.hear(from(keysId, "Keys"));
    bluetooth.hear(from(Uuid::random(), {}));
    EXPECT_THAT(news(), IsEmpty()) << "the count rests for a while";
    scheduler.advance(10s);
    EXPECT_THAT(news(), ElementsAre("bluetooth: Found 3 Bluetooth devices"));
}

TEST_F(BluetoothReportTest, tellsOfTrackingAndOfAlerts) {
    manager().startScanning();
    bluetooth.hear(from(keysId, "Keys"));
    manager().track(*manager().deviceWith(keysId));
    EXPECT_THAT(news(), Contains("tracking Keys, no alert"));
    manager().setLossAlertDelay(15, keysId);
    manager().setLossAlert(true, keysId);
    EXPECT_THAT(news(), ElementsAre("tracking Keys, alert after 15 seconds without a signal"));

    manager().setErrorMessage("Something went wrong");
    EXPECT_THAT(news(), ElementsAre("ERROR: Something went wrong"));
    manager().stopTracking(keysId);
    EXPECT_THAT(news(), ElementsAre("no longer tracking Keys"));
}

} // namespace
} // namespace nightjar::headless
