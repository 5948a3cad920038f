#include "cli/progress_bar.h"

#include <gtest/gtest.h>

#include <pty.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace {

using orvane::cli::ProgressBar;
using orvane::platform::HostClock;

std::uint64_t milliseconds = 0;
constexpr HostClock scriptedClock{[]() noexcept { return milliseconds; }, {1'000'000, 1}};

std::string bar(int filled, const std::string& percent) {
    const auto count = static_cast<std::size_t>(filled);
    return "\r[" + std::string(count, '#') + std::string(40 - count, ' ') + "] " + percent + "%";
}

/// A terminal whose output the test reads.
class Terminal final {
  public:
    Terminal() {
        int end = -1;
        if (openpty(&screen, &end, nullptr, nullptr, nullptr) != 0)
            throw std::system_error(errno, std::generic_category());
        stream = fdopen(end, "w");
    }
    ~Terminal() {
        std::fclose(stream);
        close(screen);
    }

    /// The output since the last call. A mark is written after it, so that no waiting is needed.
    std::string drawn() {
        std::fputc(mark, stream);
        std::fflush(stream);
        std::string text;
        for (char next = 0; read(screen, &next, 1) == 1 && next != mark;)
            text += next;
        return text;
    }

    std::FILE* stream = nullptr;

  private:
    static constexpr char mark = '\0';
    int screen = -1;
};

TEST(ProgressBar, ShowsTheFinishedShareTenTimesASecondAndIsErasedAtTheEnd) {
    const std::pair<double, std::string> barByFraction[] = {{0.004, bar(0, "  0")},  {0.25, bar(10, " 25")},
                                                            {0.999, bar(39, " 99")}, {1.0, bar(40, "100")},
                                                            {-0.5, bar(0, "  0")},   {1.5, bar(40, "100")}};
    Terminal terminal;
    milliseconds = 5'000;
    {
        ProgressBar progress(terminal.stream, scriptedClock);
        for (const auto& [fraction, expected] : barByFraction)
            for (int update = 0; update < 100; ++update, ++milliseconds) {
                progress.update(fraction);
                EXPECT_EQ(terminal.drawn(), update == 0 ? expected : "") << fraction << ", " << update;
            }
    }
    EXPECT_EQ(terminal.drawn(), "\r\x1b[K");
}

} // namespace
