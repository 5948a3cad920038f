#include "engine/session/json_writer.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace orvane::session {

namespace {

using nlohmann::json;

} // namespace

void JSONWriter::key(std::string_view word) {
    separate();
    levels.back().key = word;
    written += '"';
    written += word;
    written += indentWidth == 0 ? "\":" : "\": ";
}

void JSONWriter::value(std::string_view text) {
    startValue();
    written += json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

void JSONWriter::plainText(std::string_view text) {
    startValue();
    written += '"';
    written += text;
    written += '"';
}

void JSONWriter::value(bool truth) {
    startValue();
    written += truth ? "true" : "false";
}

void JSONWriter::value(std::int64_t number) {
    startValue();
    written += std::to_string(number);
}

void JSONWriter::value(double number) {
    startValue();
    if (!std::isfinite(number) && !nonFinitePath) nonFinitePath = path();
    written += json(number).dump();
}

void JSONWriter::begin(char bracket, bool isArray) {
    startValue();
    written += bracket;
    levels.push_back({.isArray = isArray});
}

void JSONWriter::end(char bracket) {
    const bool isEmpty = levels.back().count == 0;
    levels.pop_back();
    if (!isEmpty) breakLine();
    written += bracket;
}

void JSONWriter::startValue() {
    if (!levels.empty() && levels.back().isArray) separate();
}

void JSONWriter::separate() {
    ++writtenCount;
    if (levels.back().count++ > 0) written += ',';
    breakLine();
}

void JSONWriter::breakLine() {
    if (indentWidth == 0) return;
    written += '\n';
    written.append(levels.size() * indentWidth, ' ');
}

std::string JSONWriter::path() const {
    std::string way;
    for (const Level& level : levels) {
        if (level.isArray) {
            way += '[' + std::to_string(level.count - 1) + ']';
            continue;
        }
        if (!way.empty()) way += '.';
        way += level.key;
    }
    return way;
}

} // namespace orvane::session
