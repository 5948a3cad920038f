#include "engine/session_files.h"
#include "platform/files/preferences.h"
#include "platform/files/sound_file_reader.h"
#include "platform/files/sound_file_writer.h"
#include "plugins/plugin_preset_store.h"
#include "support/description_of.h"
#include "support/file_faults.h"
#include "support/random_document.h"
#include "support/server_process.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace orvane;
using namespace orvane::test;
using std::filesystem::path;

constexpr session::AUComponentIdentity delay{0x61756678, 2, 1};

/// Something that the program keeps in a file: how it is written, and what is read back of it ("" for
/// nothing).
struct Stored {
    const char* name;
    const char* file;
    /// Gives what went wrong or "success"; the store of presets does not tell.
    std::string (*write)(const path& folder, int version);
    std::string (*read)(const path& folder);
};

/// For the names of the tests.
void PrintTo(const Stored& stored, std::ostream* stream) {
    *stream << stored.name;
}

std::string writeSession(const path& folder, int version) {
    auto document = randomDocument(1);
    document.master.levels.masterTargetDB = version;
    return descriptionOf(engine::exportSession(document, folder / "show.orvane"));
}

std::string readSession(const path& folder) {
    const auto document = engine::readSession(folder / "show.orvane");
    return document ? std::to_string(static_cast<int>(document.value().master.levels.masterTargetDB)) : "";
}

/// Version n has n presets.
std::string writePreset(const path& folder, int /*version*/) {
    platform::SystemLog quiet([](const platform::LogLine&) {});
    plugins::PluginPresetStore(folder, quiet).add({{"Hall", platform::PropertyList::Data(100'000), delay}});
    return "success";
}

std::string readPresets(const path& folder) {
    platform::SystemLog quiet([](const platform::LogLine&) {});
    const std::size_t count = plugins::PluginPresetStore(folder, quiet).presets(delay).size();
    return count == 0 ? "" : std::to_string(count);
}

std::string writePreference(const path& folder, int version) {
    platform::FilePreferences preferences(folder / "orvane/preferences");
    return descriptionOf(preferences.setValue("channels", std::to_string(version)));
}

std::string readPreference(const path& folder) {
    return platform::FilePreferences(folder / "orvane/preferences").value("channels").value_or("");
}

/// Several writes of the sound file library's and the header's second one.
constexpr std::size_t soundFrames = 20'000;

std::string writeSound(const path& folder, int version) {
    auto writer = platform::SoundFileWriter::create(folder / "mix.wav", 1, 48000.0);
    if (!writer) return descriptionOf(writer);
    const std::vector<float> samples(soundFrames, static_cast<float>(version));
    const std::span<const float> block = samples;
    if (const auto written = writer.value().write({&block, 1}); !written) return descriptionOf(written);
    return descriptionOf(writer.value().commit());
}

std::string readSound(const path& folder) {
    auto reader = platform::SoundFileReader::open(folder / "mix.wav");
    if (!reader) return "";
    std::vector<float> samples(soundFrames);
    const std::span<float> block = samples;
    const auto count = reader.value().read({&block, 1});
    // Most programs believe the header; the library finds the samples without it.
    const std::string content = contentOf(folder / "mix.wav");
    std::uint32_t sizeInHeader = 0;
    std::memcpy(&sizeInHeader, content.data() + std::string_view("RIFF").size(), sizeof sizeInHeader);
    const bool isWhole = count && count.value() == soundFrames
                         && content.size() == sizeInHeader + std::string_view("RIFFsize").size()
                         && std::ranges::all_of(samples, [&](float sample) { return sample == samples[0]; });
    return isWhole ? std::to_string(static_cast<int>(samples[0])) : "torn";
}

constexpr Stored allStored[] = {
    {"session", "show.orvane", writeSession, readSession},
    {"presets", "ORVANE/PluginPresets.json", writePreset, readPresets},
    {"preferences", "orvane/preferences", writePreference, readPreference},
    {"sound", "mix.wav", writeSound, readSound}};

class StorageFaults : public testing::TestWithParam<Stored> {
  protected:
    /// The names in the stored file's folder that are not the stored file.
    [[nodiscard]] std::vector<std::string> strangers(const TemporaryFolder& folder) const {
        std::vector<std::string> found;
        const path file = folder / GetParam().file;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator(file.parent_path(), none))
            if (entry.path() != file) found.push_back(entry.path().filename().string());
        return found;
    }
};

// Each call in turn fails, on a first and on a second writing: afterwards there is what was there before, or
// the new if the caller was not told of a failure, and nothing else; the next writing succeeds.
TEST_P(StorageFaults, LeaveTheOldFileOrTheNewAndReportTheReason) {
    const Stored& stored = GetParam();
    for (const int error : {ENOSPC, EROFS, EIO, EACCES})
        for (const int before : {0, 1}) {
            std::size_t call = 0;
            for (bool hasHappened = true; hasHappened; ++call) {
                SCOPED_TRACE(
                    testing::Message() << std::generic_category().message(error) << " at call " << call
                );
                const TemporaryFolder folder;
                if (before == 1) {
                    ASSERT_EQ(stored.write(folder / "", 1), "success");
                }
                std::string said;
                {
                    const FileFault fault(call, error);
                    said = stored.write(folder / "", before + 1);
                    hasHappened = fault.hasHappened();
                }
                const std::string found = stored.read(folder / "");
                const std::string older = before == 0 ? "" : "1";
                const std::string newer = std::to_string(before + 1);
                EXPECT_THAT(found, testing::AnyOf(older, newer));
                if (said == "success") {
                    if (stored.write != writePreset) {
                        EXPECT_EQ(found, newer);
                    }
                } else {
                    EXPECT_EQ(found, older);
                    EXPECT_THAT(said, testing::HasSubstr(std::generic_category().message(error)));
                }
                EXPECT_THAT(strangers(folder), testing::IsEmpty());
                const int next = found.empty() ? 1 : std::stoi(found) + 1;
                EXPECT_EQ(stored.write(folder / "", next), "success");
                EXPECT_EQ(stored.read(folder / ""), std::to_string(next));
            }
            EXPECT_GT(call, 3U) << "no call was seen";
        }
}

// As if the disk had filled up between two calls: also what libraries write again at their end fails, such as
// a header.
TEST_P(StorageFaults, AreNoticedIfTheyLast) {
    const Stored& stored = GetParam();
    std::size_t call = 0;
    for (bool hasHappened = true; hasHappened; ++call) {
        const TemporaryFolder folder;
        std::string said;
        {
            const FileFault fault(call, ENOSPC, 2);
            said = stored.write(folder / "", 1);
            hasHappened = fault.hasHappened();
        }
        if (stored.write == writePreset) continue;
        EXPECT_EQ(stored.read(folder / ""), said == "success" ? "1" : "") << "from call " << call << " on";
    }
}

// A crash of the machine leaves the old file or the new one: the content is on the disk before the name is,
// and the name before the caller goes on.
TEST_P(StorageFaults, CannotHappenBehindTheCallersBack) {
    const TemporaryFolder folder;
    const FileCalls calls;
    ASSERT_EQ(GetParam().write(folder / "", 1), "success");
    std::vector<std::string> names = calls.names();
    const auto lastWrite = std::ranges::find(names.rbegin(), names.rend(), "write").base();
    names.erase(names.begin(), lastWrite);
    std::erase_if(names, [](const std::string& name) { return name == "linkat"; });
    EXPECT_THAT(names, testing::ElementsAre("fsync file", "rename", "fsync folder"));
}

// A signal that a handler takes may end any write before its first byte.
TEST_P(StorageFaults, DoNotIncludeSignals) {
    const Stored& stored = GetParam();
    const TemporaryFolder folder;
    std::vector<std::string> names;
    {
        const FileCalls calls;
        ASSERT_EQ(stored.write(folder / "", 1), "success");
        names = calls.names();
    }
    for (std::size_t call = 0; call < names.size(); ++call) {
        if (names[call] != "write") continue;
        const TemporaryFolder other;
        const FileFault fault(call, EINTR);
        EXPECT_EQ(stored.write(other / "", 1), "success") << "write, call " << call;
        EXPECT_TRUE(fault.hasHappened());
        EXPECT_EQ(stored.read(other / ""), "1") << "write, call " << call;
    }
}

// The process ends in the middle of each call in turn: afterwards there is the old file or the new one. What
// was being written stays under a hidden name that no run of the program ever reads.
TEST_P(StorageFaults, KillingTheProgramAtAnyInstantLeavesTheOldFileOrTheNew) {
    const Stored& stored = GetParam();
    for (const int before : {0, 1}) {
        std::size_t call = 0;
        for (bool wasKilled = true; wasKilled; ++call) {
            SCOPED_TRACE(testing::Message() << "killed at call " << call);
            const TemporaryFolder folder;
            if (before == 1) {
                ASSERT_EQ(stored.write(folder / "", 1), "success");
            }
            const int exitCode = exitCodeOfChild([&] {
                const FileFault fault(call, FileFault::kill);
                stored.write(folder / "", before + 1);
            });
            wasKilled = exitCode < 0;
            ASSERT_TRUE(wasKilled || exitCode == EXIT_SUCCESS);
            const std::string older = before == 0 ? "" : "1";
            const std::string newer = std::to_string(before + 1);
            EXPECT_THAT(stored.read(folder / ""), testing::AnyOf(older, newer));
            for (const std::string& name : strangers(folder))
                EXPECT_THAT(name, testing::StartsWith(".orvane-"));
        }
        EXPECT_GT(call, 3U) << "no call was seen";
    }
}

// A recording has its name from the start; its end is on the disk before the caller goes on.
TEST(Recording, IsOnTheDiskOnceItHasEnded) {
    const TemporaryFolder folder;
    auto writer = platform::SoundFileWriter::record(folder / "mix.wav", 1, 48000.0);
    ASSERT_TRUE(writer);
    const std::vector<float> samples(soundFrames, 1.0F);
    const std::span<const float> block = samples;
    ASSERT_TRUE(writer.value().write({&block, 1}));
    const FileCalls calls;
    ASSERT_TRUE(writer.value().commit());
    EXPECT_THAT(calls.names(), testing::Contains("write"));
    EXPECT_EQ(calls.names().back(), "fsync file");
}

INSTANTIATE_TEST_SUITE_P(Files, StorageFaults, testing::ValuesIn(allStored), [](const auto& each) {
    return std::string(each.param.name);
});

} // namespace
