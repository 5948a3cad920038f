#pragma once

#include "soak/choices.h"
#include "soak/operation.h"
#include "soak/stage.h"

#include <cstddef>
#include <string_view>

namespace orvane::soak {

/// Somebody at a mixer who does anything that can be done with it, one operation after the other, as the
/// choices decide. The same choices on the same stepped stage do the same. Main thread.
class RandomOperator final {
  public:
    /// What an operator does to the audio that runs.
    enum class Manner {
        /// Anything.
        careless,
        /// Nothing that interrupts it or changes its buffer size.
        careful,
    };

    /// Both outlive the operator.
    RandomOperator(Stage& workedOn, Choices& decisions, Manner mannerOfWork = Manner::careless);

    /// Does the next operation and returns its name.
    std::string_view act();

    /// Ends the show: empties all lists and slots, so that no more memory is in use than after any other
    /// show. A careless operator also leaves a fresh mixer, running where it can.
    void clearDesk();

    /// How many there have been.
    [[nodiscard]] std::size_t operations() const { return done; }

  private:
    [[nodiscard]] const Operation& next() const;
    void makeFreshMixer();

    Manner manner;
    Hands hands;
    std::vector<const Operation*> repertoire;
    std::size_t done = 0;
};

} // namespace orvane::soak
