#include "platform/base/uuid.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orvane::platform::Uuid;

TEST(Uuid, IsReadInEitherCaseAndWrittenInUpperCase) {
    const Uuid expected{{1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xFE, 0xDC, 0xBA, 0x98, 0, 1, 0, 0xFF}};
    for (const char* text : {"01234567-89AB-CDEF-FEDC-BA98000100FF", "01234567-89aB-cdef-feDC-ba98000100Ff"})
        EXPECT_EQ(Uuid::parse(text), expected) << text;
    EXPECT_EQ(expected.toString(), "01234567-89AB-CDEF-FEDC-BA98000100FF");
}

TEST(Uuid, IsMarkedAsRandom) {
    for (int i = 0; i < 100; ++i) {
        const std::string text = Uuid::random().toString();
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
    }
}

TEST(Uuid, RefusesAnyOtherForm) {
    for (const char* text :
         {"", "0123456789ABCDEFFEDCBA98000100FF", "{01234567-89AB-CDEF-FEDC-BA98000100FF}",
          "01234567-89AB-CDEF-FEDC-BA98000100F", "01234567-89AB-CDEF-FEDC-BA98000100FFF",
          "01234567-89AB-CDEF-FEDC-BA98000100FG", "0123456-789AB-CDEF-FEDC-BA98000100FF"})
        EXPECT_FALSE(Uuid::parse(text)) << text;
}

} // namespace
