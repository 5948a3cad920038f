#pragma once

#include "reference_conditions.h"

namespace orvane::bench {

/// Times of one kind of block, in seconds.
struct Comparison {
    double median = 0.0;
    /// What a tenth of the blocks stayed within: a block that nothing else on the machine disturbed.
    double undisturbed = 0.0;
    double within999 = 0.0;
    double worst = 0.0;
    /// Medians of the plain mixer's block and of a bare copy, measured in turns with the fast one's.
    double plain = 0.0;
    double copy = 0.0;

    [[nodiscard]] double timesFaster() const { return plain / median; }
};

/// The automix alone, double precision in and out.
Comparison compareProcessor(const ReferenceConditions::Shape& shape);

/// The render pass and the output pull. Ends the program with a message where the fast mixer does not give
/// the bits of the plain one.
Comparison compareRenderPass(const ReferenceConditions::Shape& shape);

} // namespace orvane::bench
