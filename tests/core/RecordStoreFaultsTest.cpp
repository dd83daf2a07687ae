// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/AtomicFile.h"
#include "core/mesh/RecordStore.h"
#include "tests/support/Builders.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <cstdlib>
#include <future>
#include <gmock/gmock.h>
#include <latch>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace nightjar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::positionAt;
using Result = std::expected<void, std::string>;

std::vector<MeshPosition> loaded(PositionStore& store) {
    std::promise<std::vector<MeshPosition>> promise;
    store.load([&](auto records) { promise.set_value(std::move(records)); });
    return promise.get_future().get();
}

std::string appendError(PositionStore& store, const MeshPosition& position) {
    std::promise<Result> promise;
    store.append(position, 10'000, [&](Result result) { promise.set_value(std::move(result)); });
    const auto result = promise.get_future().get();
    return result ? "" : result.error();
}

std::ptrdiff_t filesIn(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

/// Files cannot grow beyond `bytes` while it lives, as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limited{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

class RecordStoreFaultsTest : public ::testing::Test {
protected:
    testing::TemporaryFolder m_folder;
    fs::path m_path = m_folder.path() / "positions.json";
};

TEST_F(RecordStoreFaultsTest, aFullDiskLeavesTheOldFileAndNothingElse) {
    PositionStore store(m_path);
    const auto kept = positionAt(1, 1);
    ASSERT_EQ(appendError(store, kept), "");
    {
        const FileSizeLimit limit(250);
        EXPECT_THAT(appendError(store, positionAt(2, 2)),
                    HasSubstr("The file “positions.json” couldn’t be saved: File too large."));
        EXPECT_EQ(appendError(store, positionAt(1, 1)), "") << "a duplicate needs no room";
    }
    EXPECT_THAT(loaded(store), ElementsAre(kept));
    EXPECT_EQ(filesIn(m_folder.path()), 1);
    EXPECT_EQ(appendError(store, positionAt(2, 2)), "");
}

TEST_F(RecordStoreFaultsTest, foldedAppendsFailLikeSingleOnes) {
    PositionStore store(m_path);
    ASSERT_EQ(appendError(store, positionAt(1, 1)), "");
    std::latch hold(1);
    std::vector<bool> saved;
    const auto note = [&](const Result& result) { saved.push_back(result.has_value()); };
    {
        const FileSizeLimit limit(250);
        store.load([&](auto) { hold.wait(); });
        store.append(positionAt(1, 1), 10, note);
        store.append(positionAt(2, 2), 10, note);
        store.append(positionAt(2, 2), 10, note);
        store.append(positionAt(1, 1), 10, note);
        hold.count_down();
        EXPECT_EQ(loaded(store).size(), 1u);
    }
    EXPECT_THAT(saved, ElementsAre(true, false, false, true));
}

TEST_F(RecordStoreFaultsTest, aFolderThatCannotBeMadeIsReported) {
    ASSERT_TRUE(replaceFile(m_path, "[]"));
    PositionStore store(m_path / "folder" / "positions.json");
    EXPECT_THAT(appendError(store, positionAt(1, 1)), HasSubstr("couldn’t be saved: Not a directory."));
}

TEST_F(RecordStoreFaultsTest, aFolderInPlaceOfTheFileIsReported) {
    fs::create_directories(m_path / "inner");
    PositionStore store(m_path);
    EXPECT_EQ(loaded(store).size(), 0u);
    EXPECT_THAT(appendError(store, positionAt(1, 1)), HasSubstr("couldn’t be saved: "));
    EXPECT_EQ(filesIn(m_folder.path()), 1);
}

TEST_F(RecordStoreFaultsTest, aPipeInPlaceOfTheFileIsReplacedWithoutWaitingForIt) {
    ASSERT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
    PositionStore store(m_path);
    EXPECT_EQ(appendError(store, positionAt(1, 1)), "");
    EXPECT_EQ(loaded(store).size(), 1u);
}

TEST_F(RecordStoreFaultsTest, storesOfOneFileNeverDisturbEachOther) {
    std::atomic<int> failures = 0;
    std::atomic<bool> done = false;
    std::jthread reader([&] {
        while (!done) {
            const auto bytes = readWholeFile(m_path);
            if (bytes && (!bytes->starts_with("[\n") || !bytes->ends_with("\n]")))
                ++failures;
        }
    });
    {
        PositionStore first(m_path);
        PositionStore second(m_path);
        for (int i = 0; i < 100; ++i) {
            first.append(positionAt(1, i), 50, [&](const Result& result) { failures += !result; });
            second.append(positionAt(2, i), 50, [&](const Result& result) { failures += !result; });
            if (i % 5 == 0)
                loaded(first); // so that not all of them are folded into one
        }
    }
    done = true;
    reader.join();
    EXPECT_EQ(failures, 0);
    PositionStore store(m_path);
    EXPECT_GT(loaded(store).size(), 0u);
    EXPECT_EQ(filesIn(m_folder.path()), 1);
}

constexpr const char* victimFile = "NIGHTJAR_TEST_VICTIM_FILE";

/// Not a test of its own: the process that the next one kills.
TEST(RecordStoreVictim, DISABLED_appendsUntilKilled) {
    PositionStore store(fs::path(std::getenv(victimFile)));
    auto index = static_cast<double>(loaded(store).size());
    for (;; ++index)
        ASSERT_EQ(appendError(store, positionAt(0, index)), "");
}

/// This program once more, as a process that appends to `path` until it is killed.
class Victim {
public:
    explicit Victim(const fs::path& path) {
        ::setenv(victimFile, path.c_str(), 1);
        std::string arguments[] = {"victim", "--gtest_also_run_disabled_tests",
                                   "--gtest_filter=RecordStoreVictim.DISABLED_appendsUntilKilled",
                                   "--gtest_output=", "--gtest_brief=1"};
        char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                        arguments[3].data(), arguments[4].data(), nullptr};
        if (::posix_spawn(&m_pid, "/proc/self/exe", nullptr, nullptr, argv, environ) != 0)
            m_pid = -1;
    }
    [[nodiscard]] bool runs() const { return m_pid > 0 && ::waitpid(m_pid, nullptr, WNOHANG) == 0; }
    ~Victim() {
        if (m_pid <= 0)
            return;
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }

private:
    pid_t m_pid = -1;
};

TEST_F(RecordStoreFaultsTest, aProcessKilledAtAnyInstantLeavesAWholeFile) {
    PositionStore store(m_path);
    std::size_t before = 0;
    for (int round = 0; round < 10; ++round) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        {
            const Victim victim(m_path);
            const auto enough = before + 3 + static_cast<std::size_t>(round);
            while (loaded(store).size() < enough) {
                ASSERT_TRUE(victim.runs());
                ASSERT_LT(std::chrono::steady_clock::now(), deadline);
            }
        }
        const auto positions = loaded(store);
        ASSERT_GE(positions.size(), before + 3);
        for (std::size_t i = 0; i < positions.size(); ++i)
            ASSERT_EQ(positions[i].longitude, static_cast<double>(i));
        before = positions.size();
        ASSERT_LE(filesIn(m_folder.path()), 2) << "leftovers pile up";
    }
    ASSERT_EQ(appendError(store, positionAt(1, 1)), "");
    EXPECT_EQ(filesIn(m_folder.path()), 1) << "a leftover is used up";
}

} // namespace
} // namespace nightjar
