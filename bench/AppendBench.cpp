// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bench/Measure.h"
#include "bench/Samples.h"
#include "core/base/AtomicFile.h"
#include "core/json/Encoder.h"
#include "core/mesh/MeshJson.h"
#include "core/mesh/RecordStore.h"
#include "core/mesh/StoredList.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <future>
#include <unistd.h>

namespace {

using namespace nightjar;
namespace fs = std::filesystem;

/// A folder on the disk that holds the working directory: a temporary folder may be in memory, where nothing
/// is synced.
class Folder {
public:
    Folder() {
        std::string name = (fs::current_path() / "bench-append-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(m_path); }
    [[nodiscard]] fs::path operator/(const char* name) const { return m_path / name; }

private:
    fs::path m_path;
};

template <class Record>
Record sample(bench::Samples& samples, int index) {
    if constexpr (std::is_same_v<Record, MeshMessage>)
        return samples.message(index);
    else
        return samples.position(index);
}

/// The least that any append must do: the same bytes read, written, synced and renamed.
void readAndRewrite(const fs::path& path, const fs::path& temporary) {
    const auto size = fs::file_size(path);
    const auto bytes = std::make_unique_for_overwrite<char[]>(size);
    const int in = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(::read(in, bytes.get(), size));
    ::close(in);
    const int out = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    benchmark::DoNotOptimize(::write(out, bytes.get(), size));
    ::fsync(out);
    ::close(out);
    fs::rename(temporary, path);
}

/// One append to a full file, beside the floor and the parts of reading and writing every record. Wanted: at
/// most 3 times the floor.
template <class Record>
void append(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const Folder folder;
    const auto path = folder / "records.json";
    const auto other = folder / "floor.json";
    const json::Encoder encoder(json::DateForm::iso8601, json::Layout::pretty, json::KeyOrder::sorted);

    bench::Samples samples;
    std::vector<Record> records;
    for (int i = 0; i < count; ++i)
        records.push_back(sample<Record>(samples, i));
    const auto text = encoder.encodeList(std::span<const Record>(records)).value();
    if (!replaceFile(path, text) || !replaceFile(other, text))
        return state.SkipWithError("no file");

    RecordStore<Record> store(path);
    bench::Durations whole, floor, read, check, add, write, decode, encode;
    int index = count;
    for (auto _ : state) {
        const auto record = sample<Record>(samples, index++);
        whole.measure([&] {
            std::promise<bool> saved;
            store.append(record, static_cast<std::size_t>(count),
                         [&](auto result) { saved.set_value(result.has_value()); });
            if (!saved.get_future().get())
                state.SkipWithError("not saved");
        });
        floor.measure([&] { readAndRewrite(other, folder / "floor.tmp"); });

        std::string bytes;
        std::optional<StoredList<Record>> list;
        std::string changed;
        read.measure([&] { bytes = readWholeFile(other).value(); });
        const std::string copy = bytes;
        check.measure([&] { list.emplace(std::move(bytes)); });
        add.measure([&] {
            if (!list->holdsDuplicateOf(record) && list->add(record, static_cast<std::size_t>(count)))
                changed = list->takeText();
        });
        write.measure([&] { benchmark::DoNotOptimize(replaceFile(other, changed)); });

        // What a file in a layout of another program costs in addition.
        std::optional<std::vector<Record>> decoded;
        decode.measure([&] { decoded = json::Decoder(json::DateForm::iso8601).decodeList<Record>(copy); });
        encode.measure([&] {
            benchmark::DoNotOptimize(encoder.encodeList(std::span<const Record>(decoded.value())).value());
        });
    }
    state.counters["bytes"] = static_cast<double>(text.size());
    state.counters["append_ms"] = whole.median() * 1e3;
    state.counters["floor_ms"] = floor.median() * 1e3;
    state.counters["times_floor"] = whole.median() / floor.median();
    state.counters["part_1_read_ms"] = read.median() * 1e3;
    state.counters["part_2_check_ms"] = check.median() * 1e3;
    state.counters["part_3_add_ms"] = add.median() * 1e3;
    state.counters["part_4_write_ms"] = write.median() * 1e3;
    state.counters["other_layout_decode_ms"] = decode.median() * 1e3;
    state.counters["other_layout_encode_ms"] = encode.median() * 1e3;
}
BENCHMARK(append<MeshPosition>)->Arg(10'000)->Unit(benchmark::kMillisecond)->Iterations(60);
BENCHMARK(append<MeshMessage>)->Arg(5'000)->Unit(benchmark::kMillisecond)->Iterations(60);

} // namespace
