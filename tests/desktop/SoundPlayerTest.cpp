// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SoundPlayer.h"
#include "platform/linux/AlertSound.h"
#include "platform/linux/BundledSounds.h"
#include "platform/linux/CanberraOutput.h"

#include "platform/simulated/FakeScheduler.h"
#include "tests/support/Environment.h"
#include "tests/support/EventLoop.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <fstream>
#include <future>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

/// What a loudspeaker is told and how it fares. Shared with the thread of the sounds.
struct Loudspeaker {
    using Opened = SoundOutput::Opened;
    using Played = SoundOutput::Played;

    void note(std::string what) {
        const std::scoped_lock lock(mutex);
        told.push_back(std::move(what));
    }
    std::vector<std::string> takeTold() {
        const std::scoped_lock lock(mutex);
        return std::exchange(told, {});
    }
    std::size_t toldCount() {
        const std::scoped_lock lock(mutex);
        return told.size();
    }

    std::mutex mutex;
    std::vector<std::string> told;
    std::atomic<Opened> server = Opened::yes;
    std::atomic<Opened> hardware = Opened::yes;
    std::atomic<Played> next = Played::yes;
    std::shared_future<void> gate; ///< playing waits for it
};

class FakeOutput final : public SoundOutput {
public:
    explicit FakeOutput(std::shared_ptr<Loudspeaker> speaker) : m_speaker(std::move(speaker)) {}

    Opened open(Way way) override {
        m_speaker->note(way == Way::soundServer ? "server" : "hardware");
        return way == Way::soundServer ? m_speaker->server : m_speaker->hardware;
    }
    Played play(const Sound& sound) override {
        const auto* theme = std::get_if<ThemeSound>(&sound);
        m_speaker->note(theme ? theme->name : std::get<std::filesystem::path>(sound).string());
        if (m_speaker->gate.valid())
            m_speaker->gate.wait();
        // Fails once.
        return m_speaker->next.exchange(Played::yes);
    }
    void close() override {}

private:
    std::shared_ptr<Loudspeaker> m_speaker;
};

class SoundPlayerTest : public ::testing::Test {
protected:
    /// What the loudspeaker was told since the last time, once it is that much.
    std::vector<std::string> told(std::size_t count) {
        EXPECT_TRUE(runEventsUntil([&] { return speaker->toldCount() >= count; }));
        return speaker->takeTold();
    }
    void play(const char* name) { player.play(ThemeSound{name}); }

    FakeScheduler scheduler;
    std::shared_ptr<Loudspeaker> speaker = std::make_shared<Loudspeaker>();
    SoundPlayer player{scheduler, std::make_unique<FakeOutput>(speaker)};
};

TEST_F(SoundPlayerTest, opensTheServerOnceForAllSounds) {
    AlertSound alerts(player);
    BundledSounds bundled(player, "/sounds");
    alerts.play(NotificationSound::critical);
    EXPECT_THAT(told(2), ElementsAre("server", "alarm-clock-elapsed"));
    alerts.play(NotificationSound::standard);
    EXPECT_THAT(told(1), ElementsAre("message-new-instant"));
    bundled.play("Unknown");
    bundled.play("Tink");
    EXPECT_THAT(told(1), ElementsAre("/sounds/tink.wav"));
}

TEST_F(SoundPlayerTest, usesTheHardwareOnlyWithoutAWayToAServer) {
    speaker->server = SoundOutput::Opened::wayIsMissing;
    play("a");
    EXPECT_THAT(told(3), ElementsAre("server", "hardware", "a"));
}

TEST_F(SoundPlayerTest, staysQuietForAWhileAfterAFailure) {
    speaker->server = SoundOutput::Opened::no;
    play("a");
    EXPECT_THAT(told(1), ElementsAre("server")) << "a server that is not there is no reason for the hardware";
    speaker->server = SoundOutput::Opened::yes;
    scheduler.advance(SoundPlayer::quietTime - 1ms);
    play("b");
    scheduler.advance(1ms);
    play("c");
    EXPECT_THAT(told(2), ElementsAre("server", "c"));
}

TEST_F(SoundPlayerTest, aServerThatWasRestartedIsOpenedAgain) {
    play("a");
    EXPECT_THAT(told(2), ElementsAre("server", "a"));
    speaker->next = SoundOutput::Played::no;
    play("b");
    EXPECT_THAT(told(3), ElementsAre("b", "server", "b"));
    play("c");
    EXPECT_THAT(told(1), ElementsAre("c"));
}

TEST_F(SoundPlayerTest, aSoundThatIsMissingDoesNotSilenceTheOthers) {
    speaker->next = SoundOutput::Played::soundIsMissing;
    play("a");
    EXPECT_THAT(told(2), ElementsAre("server", "a"));
    play("b");
    EXPECT_THAT(told(1), ElementsAre("b"));
}

TEST_F(SoundPlayerTest, aServerThatHangsHoldsUpNothing) {
    std::promise<void> release;
    speaker->gate = release.get_future().share();
    play("a");
    EXPECT_THAT(told(2), ElementsAre("server", "a"));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 1'000; ++i)
        play(i % 2 == 0 ? "b" : "c");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    release.set_value();

    EXPECT_THAT(told(2), ElementsAre("b", "c"));
    play("d");
    EXPECT_THAT(told(1), ElementsAre("d")) << "nothing had piled up";
}

TEST_F(SoundPlayerTest, aServerThatHangsDoesNotHoldUpTheEnd) {
    std::promise<void> release;
    auto stuck = std::make_shared<Loudspeaker>();
    stuck->gate = release.get_future().share();
    const auto start = std::chrono::steady_clock::now();
    {
        SoundPlayer other(scheduler, std::make_unique<FakeOutput>(stuck));
        other.play(ThemeSound{"a"});
        ASSERT_TRUE(runEventsUntil([&] { return stuck->toldCount() == 2; }));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    EXPECT_TRUE(BackgroundThread::wasOneLeftBehind());
    release.set_value();
}

TEST(CanberraOutput, saysNothingOnAComputerWithoutSound) {
    const Environment set({{"PULSE_SERVER", "unix:/nonexistent"}, {"ALSA_CONFIG_PATH", "/nonexistent"}});
    const auto file = BundledSounds::folderBeside(QCoreApplication::applicationDirPath().toStdString());
    ::testing::internal::CaptureStderr();
    CanberraOutput output;
    for (const auto way : {SoundOutput::Way::soundServer, SoundOutput::Way::hardware}) {
        if (output.open(way) == SoundOutput::Opened::yes) {
            EXPECT_EQ(output.play(file / "tink.wav"), SoundOutput::Played::no);
        }
        output.close();
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(BundledSounds, tinkIsAShortWaveFileBesideTheProgram) {
    const auto folder = BundledSounds::folderBeside(QCoreApplication::applicationDirPath().toStdString());
    std::ifstream file(folder / "tink.wav", std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});

    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.substr(8, 4), "WAVE");
    EXPECT_EQ(bytes.size(), 44u + 4'320u * 2) << "90 ms of 48,000 samples a second, 16 bits each";
}

} // namespace
} // namespace nightjar
