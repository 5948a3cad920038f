#pragma once

#include "dsp/channel_automix_settings.h"

#include <cstddef>
#include <vector>

namespace orvane::baseline {

/// The automix as plain loops, written after its definition: the reference for the fast one's results in
/// tests and for its time in benchmarks. Fields may be changed between blocks.
class PlainAutomix final {
  public:
    using Block = std::vector<double>;

    PlainAutomix(std::size_t channels, double sampleRate, double controlRate, double masterTargetDB);

    /// `blocks`: K blocks of equal length; `active`: K flags.
    void process(const std::vector<Block>& blocks, const std::vector<bool>& active);

    std::vector<dsp::ChannelAutomixSettings> settings;
    double leadGain = 1.0;
    double backingGain = 1.0;
    double masterTargetRMS;

    void setReleaseMs(double releaseMs);

    // Results of the last block.
    std::vector<Block> outputs;
    Block master;
    std::vector<double> gains;
    double masterGain = 1.0;
    std::vector<double> outputLevels;
    double masterLevel = 0.0;

  private:
    void weigh(std::size_t channel, const Block& input);
    void shareGain();
    double levelerGain(double rms);

    double dt;
    double maleA;
    double femaleA;
    double shelfGain;
    double gainAttack;
    double gainRelease;
    double gainFloor;
    double levelerAttack;
    double levelerRelease;
    double levelerMaxGain;
    double levelerMinGain;
    std::vector<double> maleState;
    std::vector<double> femaleState;
    std::vector<double> smoothedLevel;
    std::vector<double> levels;
    std::vector<double> excess;
    std::vector<double> shares;
    std::vector<double> targets;
    Block weighted;
};

/// The RMS of a block; 0 if it is empty.
double plainRMS(const std::vector<double>& block);

} // namespace orvane::baseline
