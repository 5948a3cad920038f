#pragma once

namespace orvane::bench {

/// The parts of the benchmark program. Each measures, prints tables to standard output, and throws if a
/// measured result differs from its reference in any bit.

/// Automix and render pass against the plain mixer, for every block length and strip count.
void printBlocks();

/// The render pass on each instruction set of this processor.
void printInstructionSets();

/// The fixed cost of a block, and its components.
void printFixedCost();

/// How the time of the render pass grows with strips and frames.
void printScaling();

/// The render pass with each of the output options against the pass without.
void printOptionTimes();

/// Start, stop, recall, load, scan and memory of the whole engine.
void printEngine();

} // namespace orvane::bench
