#pragma once

namespace orvane::bench {

/// The parts of the benchmark program. Each measures, prints its tables to standard output and throws
/// where something measured did not give the bits that it must.

/// Processor and render pass against the plain mixer, for every block length and number of strips.
void printBlocks();

/// The render pass on each instruction set that the processor has.
void printInstructionSets();

/// What a block costs however short it is, and what that is made of.
void printFixedCost();

/// How the render pass grows with strips and with frames.
void printScaling();

/// Start, stop, recall, load, scan and memory of the whole engine.
void printEngine();

} // namespace orvane::bench
