#pragma once

#include "soak/choices.h"
#include "soak/operation.h"
#include "soak/stage.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace orvane::soak {

/// Performs random operations on a mixer, as the choices decide. The same choices on the same stepped stage
/// give the same result. Main thread.
class RandomOperator final {
  public:
    /// What an operator may do to running audio.
    enum class Manner {
        /// Anything.
        careless,
        /// Nothing that interrupts audio or changes the buffer size.
        careful,
    };

    /// The stage and the decisions must outlive the operator.
    RandomOperator(Stage& workedOn, Choices& decisions, Manner mannerOfWork = Manner::careless);

    /// Performs the next operation and returns its name.
    std::string_view act();

    /// Ends the show: empties all lists and slots, so that memory use is the same after every show. A
    /// careless operator also leaves a fresh mixer, running if possible.
    void clearDesk();

    /// The number of operations so far.
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
