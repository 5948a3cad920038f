#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvane::test {

/// A folder in memory if there is one, otherwise the folder of temporary files.
inline std::filesystem::path memoryFolder() {
    const std::filesystem::path sharedMemory = "/dev/shm";
    return ::access(sharedMemory.c_str(), W_OK) == 0 ? sharedMemory : std::filesystem::temp_directory_path();
}

/// A folder for a test, removed with all its content.
class TemporaryFolder final {
  public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string name = (parent / "orvane-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("Could not make " + name);
        path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(std::string_view name) const { return path / name; }

    /// Creates or overwrites a file and returns its path.
    std::filesystem::path add(std::string_view name, std::string_view content) const {
        std::ofstream(path / name, std::ios::binary) << content;
        return path / name;
    }

    /// The names of all entries.
    [[nodiscard]] std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path))
            found.insert(entry.path().filename().string());
        return found;
    }

  private:
    std::filesystem::path path;
};

/// The content of a file.
inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace orvane::test
