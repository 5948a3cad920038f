#include "platform/lv2/scan_program.h"

#include "platform/lv2/bundle_report.h"
#include "platform/lv2/component_scan.h"
#include "platform/lv2/factory_presets.h"
#include "platform/lv2/search_path.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace orvane::platform::lv2 {

namespace {

constexpr const char* programName = "orvane-scan";

constexpr rlim_t mostMemoryBytes = 1U << 30U;
constexpr rlim_t mostProcessorSeconds = 20;

void limit(__rlimit_resource_t resource, rlim_t most) {
    const rlimit both{.rlim_cur = most, .rlim_max = most};
    setrlimit(resource, &both);
}

void limitProcess() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    limit(RLIMIT_CPU, mostProcessorSeconds);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Sanitizers reserve far more address space than they use.
    limit(RLIMIT_AS, mostMemoryBytes);
#endif
}

/// Rejects files such as pipes and devices, on which reading could block.
std::string irregularFile(const std::filesystem::path& bundle) {
    std::error_code error;
    for (auto i = std::filesystem::directory_iterator(bundle, error);
         !error && i != std::filesystem::directory_iterator(); i.increment(error))
        if (std::error_code ignored; i->path().extension() == ".ttl" && !i->is_regular_file(ignored))
            return i->path().filename().native();
    return {};
}

BundleContents contentsOfBundle(const std::filesystem::path& bundle) {
    const std::string irregular = irregularFile(bundle);
    if (irregular.empty()) return readBundle(bundle);
    return {
        .effects = {}, .leftOut = {leftOutSentence(bundle.native(), "its " + irregular + " is not a file")}};
}

/// The report that the arguments ask for; absent if they are invalid.
std::optional<PropertyList::Dictionary> reportOn(std::span<const char* const> arguments) {
    constexpr std::size_t forFolder = 3;
    constexpr std::size_t forPreset = 5;
    if (arguments.size() < forFolder) return std::nullopt;
    const std::string_view what = arguments[1];
    const std::filesystem::path folder = arguments[2];
    if (what == listArgument) return dictionaryOf(bundlesIn(folder));
    if (what == bundleArgument) return dictionaryOf(contentsOfBundle(folder));
    if (what != presetArgument || arguments.size() != forPreset || !irregularFile(folder).empty())
        return std::nullopt;
    // An empty dictionary stands for a preset that does not exist.
    return readPreset(folder, arguments[3], arguments[4]).value_or(PropertyList::Dictionary{});
}

bool writeAll(const PropertyList::Data& bytes) {
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::write(STDOUT_FILENO, bytes.data() + written, bytes.size() - written);
        if (count <= 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::filesystem::path scanProgram() {
    std::error_code ignored;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    auto beside = folder / programName;
    if (::access(beside.c_str(), X_OK) == 0) return beside;
    return (folder / ORVANE_HELPERS_FROM_PROGRAMS / programName).lexically_normal();
}

int runScanProgram(int argumentCount, const char* const* arguments) {
    limitProcess();
    const auto report = reportOn({arguments, static_cast<std::size_t>(argumentCount)});
    if (!report) return EXIT_FAILURE;
    const auto bytes = dataWithPropertyList(*report);
    return bytes && writeAll(bytes.value()) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace orvane::platform::lv2
