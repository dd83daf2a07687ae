// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/RecordStore.h"
#include "RandomRecords.h"
#include "core/base/AtomicFile.h"
#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"
#include "tests/support/Builders.h"
#include "tests/support/TemporaryFolder.h"

#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <latch>
#include <limits>

namespace nightjar {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::positionAt;
using testing::received;
using Result = std::expected<void, std::string>;

template <class Record>
std::vector<Record> loaded(RecordStore<Record>& store) {
    std::promise<std::vector<Record>> promise;
    store.load([&](std::vector<Record> records) { promise.set_value(std::move(records)); });
    return promise.get_future().get();
}

template <class Record>
Result appended(RecordStore<Record>& store, const Record& record, std::size_t maximumCount) {
    std::promise<Result> promise;
    store.append(record, maximumCount, [&](Result result) { promise.set_value(std::move(result)); });
    return promise.get_future().get();
}

std::string contents(const fs::path& path) {
    return readWholeFile(path).value_or("(none)");
}

class RecordStoreTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path path(const char* name = "records.json") const {
        return m_folder.path() / "new" / "folder" / name;
    }
    void put(const std::string& text) const { ASSERT_TRUE(replaceFile(path(), text)); }

    testing::TemporaryFolder m_folder;
};

TEST_F(RecordStoreTest, firstAppendCreatesTheFolderAndTheFile) {
    MessageStore store(path());
    EXPECT_THAT(loaded(store), IsEmpty());
    EXPECT_FALSE(fs::exists(path().parent_path()));

    const auto message = received("hello", 1);
    EXPECT_TRUE(appended(store, message, 5000));
    EXPECT_THAT(loaded(store), ElementsAre(message));
    EXPECT_EQ(std::distance(fs::directory_iterator(path().parent_path()), {}), 1);
    EXPECT_EQ(fs::status(path()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(RecordStoreTest, writesReadableSortedJson) {
    MessageStore store(path());
    auto message = received("a/b", 5, 42);
    message.id = *Uuid::fromText("8c2f0e6a-0000-4000-8000-0000000000aa");
    message.timestamp += Seconds{0.75};
    ASSERT_TRUE(appended(store, message, 5000));

    EXPECT_EQ(contents(path()), R"([
  {
    "channel" : 0,
    "id" : "8C2F0E6A-0000-4000-8000-0000000000AA",
    "isOutgoing" : false,
    "packetID" : 5,
    "recipient" : 4294967295,
    "sender" : 42,
    "text" : "a\/b",
    "timestamp" : "2025-05-01T12:00:00Z"
  }
])");
    EXPECT_EQ(loaded(store).front().timestamp, testing::startDate);
}

TEST_F(RecordStoreTest, messagesAreDuplicatesByPacketAndSender) {
    MessageStore store(path());
    const auto first = received("first", 7, 1);
    const auto otherSender = received("other sender", 7, 2);
    const auto unnumbered = received("no packet", 0, 1);
    const auto unnumberedAgain = received("no packet", 0, 1);
    for (const auto& message : {first, otherSender, unnumbered, unnumberedAgain, received("again", 7, 1)})
        EXPECT_TRUE(appended(store, message, 5000));
    EXPECT_THAT(loaded(store), ElementsAre(first, otherSender, unnumbered, unnumberedAgain));
}

TEST_F(RecordStoreTest, positionsAreDuplicatesOfTheLastOneOnly) {
    PositionStore store(path());
    const auto here = positionAt(52, 5);
    const auto there = positionAt(52, 5.0000000000000009);
    const auto hereLater = positionAt(52, 5, Seconds{60});
    const auto otherNode = positionAt(52, 5, Seconds{70}, 43);
    EXPECT_TRUE(appended(store, here, 10'000));
    const auto inode = fs::last_write_time(path());
    EXPECT_TRUE(appended(store, hereLater, 10'000));
    EXPECT_EQ(fs::last_write_time(path()), inode) << "a duplicate does not write";
    for (const auto& position : {there, hereLater, otherNode})
        EXPECT_TRUE(appended(store, position, 10'000));
    EXPECT_THAT(loaded(store), ElementsAre(here, there, hereLater, otherNode));
}

TEST_F(RecordStoreTest, theOldestGiveWayBeyondTheMaximum) {
    std::vector<MeshMessage> messages;
    for (std::uint32_t i = 1; i <= 5000; ++i)
        messages.push_back(received("message", i));
    const json::Encoder encoder(json::DateForm::iso8601);
    put(encoder.encodeList(std::span<const MeshMessage>(messages)).value());

    MessageStore store(path());
    const auto newest = received("newest", 5001);
    ASSERT_TRUE(appended(store, newest, 5000));
    messages.erase(messages.begin());
    messages.push_back(newest);
    EXPECT_EQ(loaded(store), messages);

    ASSERT_TRUE(appended(store, received("repeated", 2), 10));
    EXPECT_EQ(loaded(store).size(), 5000u) << "a duplicate changes nothing";
    ASSERT_TRUE(appended(store, received("dropped long ago", 1), 10));
    EXPECT_EQ(loaded(store).size(), 10u);
}

TEST_F(RecordStoreTest, aFileThatIsNoListOfRecordsReadsAsEmptyAndIsReplaced) {
    const auto message = received("new", 1);
    for (const char* text : {"", "{", "[1]", "{}", "[{}]", "null", "[\n", "\xFF\xFE"}) {
        put(text);
        MessageStore store(path());
        EXPECT_THAT(loaded(store), IsEmpty()) << text;
        EXPECT_TRUE(appended(store, message, 5000));
        EXPECT_THAT(loaded(store), ElementsAre(message)) << text;
    }
}

TEST_F(RecordStoreTest, withoutAFileItHoldsNothing) {
    PositionStore store({});
    EXPECT_TRUE(appended(store, positionAt(1, 2), 10));
    EXPECT_THAT(loaded(store), IsEmpty());
}

TEST_F(RecordStoreTest, destroyingItFinishesWhatWasAsked) {
    std::vector<MeshPosition> positions;
    {
        PositionStore store(path());
        for (int i = 0; i < 50; ++i) {
            positions.push_back(positionAt(i, i));
            store.append(positions.back(), 100);
        }
    }
    PositionStore again(path());
    EXPECT_EQ(loaded(again), positions);
}

TEST_F(RecordStoreTest, aRecordThatCannotBeWrittenFailsAlone) {
    PositionStore store(path());
    std::latch hold(1);
    std::vector<std::string> results;
    store.load([&](auto) { hold.wait(); });
    const auto note = [&](const Result& result) { results.push_back(result ? "" : result.error()); };
    store.append(positionAt(1, 1), 10, note);
    store.append(positionAt(std::numeric_limits<double>::quiet_NaN(), 1), 10, note);
    auto ageless = positionAt(2, 2);
    ageless.timestamp = Date{Seconds{1e15}};
    store.append(ageless, 10, note);
    store.append(positionAt(3, 3), 10, note);
    hold.count_down();

    EXPECT_EQ(loaded(store).size(), 2u);
    const std::string failed(json::unencodable);
    EXPECT_THAT(results, ElementsAre("", failed, failed, ""));
}

TEST_F(RecordStoreTest, onlyTheNewestWaitWhileTheDiskHangs) {
    MessageStore store(path());
    std::latch hold(1);
    int failures = 0;
    store.load([&](auto) { hold.wait(); });
    std::vector<MeshMessage> messages;
    for (std::uint32_t i = 0; i < 1700; ++i) {
        messages.push_back(received("flood", i));
        store.append(messages.back(), 10, [&](const Result& result) { failures += !result; });
    }
    hold.count_down();
    EXPECT_EQ(loaded(store), std::vector(messages.end() - 10, messages.end()));
    EXPECT_EQ(failures, 1700 - 1000);
}

/// The rules as they read, one record after the other, without a file.
template <class Record>
void appendPlainly(std::vector<Record>& stored, const Record& record, std::size_t maximumCount) {
    if constexpr (std::is_same_v<Record, MeshMessage>) {
        for (const auto& known : stored) {
            if (record.packetID != 0 && known.packetID == record.packetID && known.sender == record.sender)
                return;
        }
    } else if (!stored.empty()) {
        const auto& last = stored.back();
        if (last.nodeNumber == record.nodeNumber && last.latitude == record.latitude &&
            last.longitude == record.longitude)
            return;
    }
    stored.push_back(record);
    while (stored.size() > maximumCount)
        stored.erase(stored.begin());
}

/// Few different keys, so that duplicates are frequent, and any other content.
MeshMessage similar(testing::RandomRecords& random, MeshMessage) {
    auto message = random.message();
    message.packetID = static_cast<std::uint32_t>(random.below(6));
    message.sender = static_cast<std::uint32_t>(random.below(2));
    return message;
}
MeshPosition similar(testing::RandomRecords& random, MeshPosition) {
    auto position = random.position();
    position.nodeNumber = static_cast<std::uint32_t>(random.below(2));
    position.latitude = static_cast<double>(random.below(2));
    position.longitude = 0.5;
    return position;
}

template <class Record>
void expectFoldedEqualsUnfolded(const fs::path& folded, const fs::path& unfolded) {
    testing::RandomRecords random;
    SCOPED_TRACE("NIGHTJAR_TEST_SEED=" + std::to_string(random.seed()));
    RecordStore<Record> together(folded);
    RecordStore<Record> alone(unfolded);
    std::vector<Record> expected;
    for (int round = 0; round < 30; ++round) {
        std::latch hold(1);
        together.load([&](auto) { hold.wait(); });
        for (auto count = random.below(12); count > 0; --count) {
            const auto record = similar(random, Record{});
            const auto maximumCount = random.chance(10) ? 1 + random.below(3) : 6;
            appendPlainly(expected, record, maximumCount);
            together.append(record, maximumCount);
            ASSERT_TRUE(appended(alone, record, maximumCount));
        }
        hold.count_down();
        ASSERT_EQ(loaded(together), expected);
        ASSERT_EQ(contents(folded), contents(unfolded));
    }
}

TEST_F(RecordStoreTest, foldedAppendsLeaveTheFileOfSingleOnes) {
    expectFoldedEqualsUnfolded<MeshMessage>(path("messages.json"), path("messages-alone.json"));
    expectFoldedEqualsUnfolded<MeshPosition>(path("positions.json"), path("positions-alone.json"));
}

} // namespace
} // namespace nightjar
