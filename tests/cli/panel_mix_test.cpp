#include "cli/mix_setup.h"
#include "cli/offline_mixer.h"
#include "dsp/decibels.h"
#include "dsp/level_detector.h"
#include "platform/files/sound_file_reader.h"
#include "support/build_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace {

using namespace orvane;

constexpr std::size_t frames = 256;
constexpr double blocksPerSecond = 48000.0 / frames;

/// The levels and gains of one block of the panel recording, in dB.
struct Moment {
    std::vector<double> inputDB;
    std::vector<double> gainDB;
    double masterLevel;
};

/// Mixes the panel recording with the default settings.
std::vector<Moment> mixPanel(double referenceNoiseGain) {
    auto opened = platform::SoundFileReader::open(test::panelRecording());
    EXPECT_TRUE(opened);
    platform::SoundFileReader reader = std::move(opened).value();
    const std::size_t microphones = reader.channelCount();
    cli::OfflineMixer mixer(microphones, {microphones, 2, reader.sampleRate()});
    cli::setUpMix(mixer.engine(), std::nullopt);
    mixer.engine().setBufferSize(frames);
    mixer.engine().setReferenceNoiseGain(referenceNoiseGain);
    EXPECT_TRUE(mixer.start());
    std::vector<std::vector<float>> captured(microphones, std::vector<float>(frames));
    std::vector<std::vector<float>> played(2, std::vector<float>(frames));
    const std::vector<std::span<float>> writable(captured.begin(), captured.end());
    const std::vector<std::span<const float>> readable(captured.begin(), captured.end());
    const std::vector<std::span<float>> outputs(played.begin(), played.end());

    std::vector<Moment> moments;
    while (reader.read(writable).value() == frames) {
        mixer.cycle(readable, outputs);
        Moment& moment = moments.emplace_back();
        for (std::size_t i = 0; i < microphones; ++i) {
            moment.inputDB.push_back(dsp::linearToDB(dsp::LevelDetector::rms(readable[i])));
            moment.gainDB.push_back(dsp::linearToDB(mixer.automix().currentGains()[i]));
        }
        moment.masterLevel = mixer.automix().currentMasterLevel();
    }
    return moments;
}

/// The microphone of the current talker: loud, and well above the spill into all others.
std::optional<std::size_t> speaker(const Moment& moment) {
    constexpr double speechDB = -55.0;
    constexpr double aboveSpillDB = 10.0;
    const auto loudest = std::ranges::max_element(moment.inputDB);
    if (*loudest < speechDB) return std::nullopt;
    for (auto other = moment.inputDB.begin(); other != moment.inputDB.end(); ++other)
        if (other != loudest && *other > *loudest - aboveSpillDB) return std::nullopt;
    return static_cast<std::size_t>(loudest - moment.inputDB.begin());
}

/// The blocks from one talker's first word to the next talker's.
struct Turn {
    std::size_t microphone;
    std::size_t begin;
    std::size_t end;
};

std::vector<Turn> turnsOf(const std::vector<Moment>& moments) {
    std::vector<Turn> turns;
    for (std::size_t block = 0; block < moments.size(); ++block) {
        const std::optional<std::size_t> who = speaker(moments[block]);
        if (who && (turns.empty() || turns.back().microphone != *who)) turns.push_back({*who, block, block});
        if (!turns.empty()) turns.back().end = block + 1;
    }
    return turns;
}

double secondsInto(std::size_t block) {
    return static_cast<double>(block) / blocksPerSecond;
}

TEST(PanelMix, LiftsTheTalkerAtOnceAndEasesBackTheOthers) {
    const std::vector<Moment> moments = mixPanel(0.0);
    const std::vector<Turn> turns = turnsOf(moments);
    ASSERT_GE(turns.size(), 4U);
    const auto rise = static_cast<std::size_t>(0.15 * blocksPerSecond);
    const auto settle = static_cast<std::size_t>(blocksPerSecond);
    for (const Turn& turn : turns) {
        for (std::size_t block = turn.begin + rise; block < turn.end; ++block) {
            const std::vector<double>& gains = moments[block].gainDB;
            const double talker = gains[turn.microphone];
            ASSERT_GT(talker, 0.0) << "microphone " << turn.microphone << " at " << secondsInto(block)
                                   << " s";
            ASSERT_LT(talker, 5.0) << "microphone " << turn.microphone << " at " << secondsInto(block)
                                   << " s";
            if (block < turn.begin + settle) continue;
            for (std::size_t other = 0; other < gains.size(); ++other) {
                if (other == turn.microphone) continue;
                ASSERT_LE(gains[other], talker - 9.0)
                    << "microphone " << other << " at " << secondsInto(block) << " s";
            }
        }
    }
    for (const Moment& moment : moments)
        ASSERT_GE(std::ranges::min(moment.gainDB), -26.0 - 1e-9);
}

TEST(PanelMix, HoldsTheMasterNearItsTargetForEveryTalker) {
    constexpr double targetDB = -10.0;
    const std::vector<Moment> moments = mixPanel(0.0);
    const auto second = static_cast<std::size_t>(blocksPerSecond);
    double loudestDB = -400.0;
    double quietestDB = 400.0;
    int spoken = 0;
    for (std::size_t begin = 0; begin + second <= moments.size(); begin += second) {
        std::size_t speech = 0;
        double masterPower = 0.0;
        double talkerPower = 0.0;
        for (std::size_t block = begin; block < begin + second; ++block) {
            const std::optional<std::size_t> who = speaker(moments[block]);
            speech += who ? 1 : 0;
            masterPower += moments[block].masterLevel * moments[block].masterLevel;
            if (who) talkerPower += std::pow(10.0, moments[block].inputDB[*who] / 10.0);
        }
        if (speech < second / 2) continue;
        ++spoken;
        const double masterDB = 10.0 * std::log10(masterPower / static_cast<double>(second));
        EXPECT_GT(masterDB, targetDB - 8.0) << "second from " << secondsInto(begin) << " s";
        EXPECT_LT(masterDB, targetDB + 2.0) << "second from " << secondsInto(begin) << " s";
        const double talkerDB = 10.0 * std::log10(talkerPower / static_cast<double>(speech));
        loudestDB = std::max(loudestDB, talkerDB);
        quietestDB = std::min(quietestDB, talkerDB);
    }
    EXPECT_GE(spoken, 12);
    EXPECT_GT(loudestDB - quietestDB, 10.0);
}

TEST(PanelMix, ClosesTheQuietRoomOnlyWithTheReferenceNoise) {
    const auto quiet = static_cast<std::size_t>(1.2 * blocksPerSecond);
    const Moment withReference = mixPanel(1.0)[quiet];
    const Moment without = mixPanel(0.0)[quiet];
    for (std::size_t i = 0; i < without.gainDB.size(); ++i) {
        EXPECT_LT(withReference.gainDB[i], -25.0) << "microphone " << i;
        EXPECT_LT(std::abs(without.gainDB[i]), 5.0) << "microphone " << i;
    }
}

} // namespace
