#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace orvane::fuzz {

/// Program arguments from bytes separated by zeros.
class Arguments final {
  public:
    Arguments(const std::uint8_t* data, std::size_t size) {
        words.emplace_back("program");
        if (size > 0) words.emplace_back();
        for (std::size_t i = 0; i < size; ++i) {
            if (data[i] == 0)
                words.emplace_back();
            else
                words.back().push_back(static_cast<char>(data[i]));
        }
        for (const std::string& word : words)
            pointers.push_back(word.c_str());
    }

    [[nodiscard]] int count() const { return static_cast<int>(pointers.size()); }
    [[nodiscard]] const char* const* values() const { return pointers.data(); }

  private:
    std::vector<std::string> words;
    std::vector<const char*> pointers;
};

/// Suppresses the program's output while it lives.
class Muted final {
  public:
    Muted() : output(stdout), errors(stderr), nowhere(std::fopen("/dev/null", "w")) {
        stdout = nowhere;
        stderr = nowhere;
        std::cout.rdbuf(nullptr);
    }
    ~Muted() {
        stdout = output;
        stderr = errors;
        std::fclose(nowhere);
        std::cout.rdbuf(stream);
    }
    Muted(const Muted&) = delete;
    Muted& operator=(const Muted&) = delete;

  private:
    std::FILE* output;
    std::FILE* errors;
    std::FILE* nowhere;
    std::streambuf* stream = std::cout.rdbuf();
};

} // namespace orvane::fuzz
