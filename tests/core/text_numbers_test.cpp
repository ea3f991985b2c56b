#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "core/numbers.h"
#include "core/record_text.h"
#include "core/text.h"

using namespace tavik;

TEST(Cp950, RoundTripsChineseAndCharactersOtherTablesLose) {
  // 碁 and the euro sign are the characters that the IBM variant of CP950 gets wrong.
  std::string s = "控制點 碁 €";
  std::string big5 = text::ToCp950(s);
  EXPECT_EQ(big5.size(), 3u * 2 + 1 + 2 + 1 + 2);
  EXPECT_EQ(static_cast<unsigned char>(big5[0]), 0xB1);  // 控 = B1 B1
  EXPECT_EQ(static_cast<unsigned char>(big5[1]), 0xB1);
  EXPECT_EQ(text::FromCp950(big5), s);
  EXPECT_EQ(text::ToCp950("ABC"), "ABC");
}

TEST(Cp950, BadBytesAndUnmappableCharactersBecomeQuestionMarks) {
  EXPECT_EQ(text::ToCp950("a😀b"), "a?b");
  EXPECT_EQ(text::FromCp950(std::string("a\xFF", 2)), "a?");
  // A lone lead byte at the end of a damaged field.
  EXPECT_EQ(text::FromCp950(std::string("ab\xB1", 3)), "ab?");
}

TEST(Cp950, FixedFieldNeverEndsInHalfACharacter) {
  // Ten Chinese characters fill 20 bytes exactly; an eleventh is cut whole.
  std::string ten = "一二三四五六七八九十";
  EXPECT_EQ(text::FixedField(ten, 20), text::ToCp950(ten));
  EXPECT_EQ(text::FixedField(ten + "百", 20), text::ToCp950(ten));
  // "A" then ten characters: 21 bytes; the last character cannot fit, a blank pads.
  std::string f = text::FixedField("A" + ten, 20);
  ASSERT_EQ(f.size(), 20u);
  EXPECT_EQ(f.back(), ' ');
  EXPECT_EQ(text::ReadFixedField(f), "A一二三四五六七八九");
  // Second bytes that look like ASCII ('@' = 0x40 in 一 = A4 40) do not confuse the cut.
  EXPECT_EQ(text::CutCp950(text::ToCp950("一一"), 3).size(), 2u);
}

TEST(Cp950, ReadFixedFieldTrimsAndCutsAtNul) {
  EXPECT_EQ(text::ReadFixedField("  P12   "), "P12");
  EXPECT_EQ(text::ReadFixedField(std::string("AB\0CD  ", 7), true), "AB");
  EXPECT_EQ(text::ReadFixedField(std::string("AB\0\0\0", 5)), "AB");
}

TEST(Numbers, PictureFormats) {
  struct Case { double v; const char* pic; const char* want; } cases[] = {
      {12.3456, "0.000", "12.346"},
      {-12.3456, "0.000", "-12.346"},
      {-0.0001, "0.000", "0.000"},
      {0.0005, "0.000", "0.001"},      // half away from zero
      {1.0005, "0.000", "1.001"},      // decided on 15 digits, not on the binary value
      {2.5, "0", "3"},
      {0.5, "#######.0000", ".5000"},
      {1234567.12345, "#######.0000", "1234567.1235"},
      {1234.5, " ########.000", " 1234.500"},
      {5, "0-", "5-"},
      {5, "00-", "05-"},
      {123, "0-", "123-"},
      {1, "0.0000㎡", "1.0000㎡"},
      {0.3024996, "0.00坪", "0.30坪"},
      {99.9996, "0.000", "100.000"},
      {0, "0.00", "0.00"},
  };
  for (const auto& c : cases) EXPECT_EQ(num::Format(c.v, c.pic), c.want) << c.v << " " << c.pic;
}

TEST(Numbers, RoundingTiesToEven) {
  EXPECT_EQ(num::RoundHalfEven(2.5), 2);
  EXPECT_EQ(num::RoundHalfEven(3.5), 4);
  EXPECT_EQ(num::RoundHalfEven(-2.5), -2);
  EXPECT_EQ(num::CInt(0.5), 0);
  EXPECT_EQ(num::CInt(1.5), 2);
  EXPECT_EQ(num::CInt(40000), 32767);
  EXPECT_EQ(num::CLng(-1e12), INT32_MIN);
  EXPECT_EQ(num::CInt(NAN), 0);
  EXPECT_DOUBLE_EQ(num::RoundHalfEven(0.125, 2), 0.12);
  EXPECT_DOUBLE_EQ(num::RoundHalfEven(0.135, 2), 0.14);
  EXPECT_EQ(num::Int(-1.5), -2);
  EXPECT_EQ(num::Fix(-1.5), -1);
}

TEST(Numbers, StrictAndLenientReading) {
  EXPECT_EQ(num::ParseStrict(" 12.5 "), 12.5);
  EXPECT_EQ(num::ParseStrict("-1.5E3"), -1500);
  EXPECT_EQ(num::ParseStrict(".5"), 0.5);
  EXPECT_FALSE(num::ParseStrict("12.5m"));
  EXPECT_FALSE(num::ParseStrict(""));
  EXPECT_FALSE(num::ParseStrict("-"));
  EXPECT_FALSE(num::ParseStrict("1,5"));
  EXPECT_EQ(num::ParseLenient("12.5m"), 12.5);
  EXPECT_EQ(num::ParseLenient("  -3"), -3);
  EXPECT_EQ(num::ParseLenient("abc"), 0);
  EXPECT_EQ(num::ParseLenient(""), 0);
  EXPECT_EQ(num::ParseLenient("1e"), 1);
  EXPECT_EQ(num::ParseLenient("2D2"), 200);
}

TEST(Numbers, RoundTripTextReadsBackIdentical) {
  for (double v : {0.1, 1.0 / 3, 2752650.123456789, -1e-300, 6.02214076e23, 280850.0}) {
    auto back = num::ParseStrict(num::RoundTrip(v));
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, v);
  }
  EXPECT_EQ(num::Plain(1.5), "1.5");
  EXPECT_EQ(num::Plain(0.1 + 0.2), "0.3");
  EXPECT_EQ(num::Plain(0), "0");
}

// The printed form of a number in the text files: sign slot, general form, blank.
TEST(Numbers, PrintedFormAndItsSwitchToExponents) {
  const struct { double v; const char* text; } cases[] = {
      {0, " 0 "},          {-0.0, " 0 "},          {0.5, " 0.5 "},      {-0.1, "-0.1 "},
      {0.1 + 0.2, " 0.3 "}, {2752650.125, " 2752650.125 "}, {0.0001, " 0.0001 "}, {0.00001, " 1E-05 "},
      {123456789012345.0, " 123456789012345 "}, {1e15, " 1E+15 "}, {-2.5e-7, "-2.5E-07 "},
  };
  for (const auto& c : cases) EXPECT_EQ(num::Printed(c.v), c.text) << c.v;
  EXPECT_EQ(num::General(-12.25), "-12.25");
  // The C library's %.15G as the oracle, over coordinates, heights and angles with few
  // and many decimals (the general form takes a shortcut for short decimals).
  std::uint64_t seed = 12345;
  auto next = [&] { return seed = seed * 6364136223846793005ULL + 1442695040888963407ULL; };
  for (int i = 0; i < 200000; ++i) {
    const double scale[] = {1e-5, 0.01, 1, 360, 3e5, 3e6, 1e14, 1e16};
    double v = static_cast<double>(next() >> 11) / 9007199254740992.0 * scale[i % 8] * (i % 3 ? 1 : -1);
    if (i % 2) v = std::round(v * 1000) / 1000;  // a value keyed with three decimals
    if (v == 0) continue;                          // "0" for -0, where %G keeps the sign
    char want[64];
    std::snprintf(want, sizeof want, "%.15G", v);
    ASSERT_EQ(num::General(v), want) << i;
  }
}

TEST(RecordText, WritesAndReadsTheWorkFileForm) {
  rec::LineWriter w;
  w.Integer(3).Number(280850.125).Text("P 1, 二").Bool(true).Bool(false).Number(-0.1);
  EXPECT_EQ(w.Line(), "3,280850.125,\"P 1, 二\",#TRUE#,#FALSE#,-0.1\r\n");
  auto f = rec::ParseTyped(w.Fields(), "NNTBBN");
  ASSERT_TRUE(f);
  EXPECT_EQ((*f)[2].text, "P 1, 二");
  EXPECT_TRUE((*f)[3].boolean);
  EXPECT_EQ((*f)[5].number, -0.1);
}

TEST(RecordText, DamagedLinesCannotBeRead) {
  EXPECT_FALSE(rec::ParseTyped("1,2,3", "NNNN"));          // torn: too few fields
  EXPECT_FALSE(rec::ParseTyped("1,\"abc", "NT"));          // unterminated text
  EXPECT_FALSE(rec::ParseTyped("1,2x", "NN"));             // not a number
  EXPECT_FALSE(rec::ParseTyped("", "N"));
  EXPECT_FALSE(rec::ParseTyped("\"a\"", "N"));             // wrong type
  auto lines = rec::SplitLines("a\r\nb\r\nc");
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[2], "c");
}
