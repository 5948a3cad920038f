#pragma once

#include "reference_conditions.h"

namespace orvane::bench {

/// Times of one kind of block, in seconds.
struct Comparison {
    double median = 0.0;
    /// The time that a tenth of the blocks did not exceed: that of an undisturbed block.
    double undisturbed = 0.0;
    double within999 = 0.0;
    double worst = 0.0;
    /// Medians of the plain mixer's block and of a mere copy, alternating with the fast ones.
    double plain = 0.0;
    double copy = 0.0;

    [[nodiscard]] double timesFaster() const { return plain / median; }
};

/// The automix alone, double precision in and out.
Comparison compareProcessor(const ReferenceConditions::Shape& shape);

/// The render pass and the output pull. Ends the program with a message if fast and plain mixer differ in any
/// bit.
Comparison compareRenderPass(const ReferenceConditions::Shape& shape);

} // namespace orvane::bench
