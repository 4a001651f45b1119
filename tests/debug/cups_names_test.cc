// to_string of the CUPS enumerations: every name, the fallbacks and the
// per-overload fallback buffers.

#include "debug/cups_names.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <string>
#include <type_traits>

namespace {

// Every overload hands back a plain C string.
static_assert(std::is_same_v<decltype(to_string(CUPS_SC_STATUS_OK)),
                             const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_ADVANCE_NONE)),
                             const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_FALSE)), const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_CSPACE_W)), const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_CUT_NONE)), const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_EDGE_TOP)), const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_JOG_NONE)), const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_ORDER_CHUNKED)),
                             const char*>);
static_assert(std::is_same_v<decltype(to_string(CUPS_ORIENT_0)), const char*>);

// The name that the overload for E gives to the integer value.
template <typename E>
std::string Name(int value) {
  const char* name = to_string(static_cast<E>(value));
  return name == nullptr ? std::string("(null)") : std::string(name);
}

// The whole trace, written out: the readable example of this file.
// The side-channel statuses, whose names the filter's log shows.
TEST(CupsNamesTest, SideChannelStatusNamesGoldenText) {
  EXPECT_EQ("CUPS_SC_STATUS_NONE", Name<cups_sc_status_e>(0));
  EXPECT_EQ("CUPS_SC_STATUS_OK", Name<cups_sc_status_e>(1));
  EXPECT_EQ("CUPS_SC_STATUS_IO_ERROR", Name<cups_sc_status_e>(2));
  EXPECT_EQ("CUPS_SC_STATUS_TIMEOUT", Name<cups_sc_status_e>(3));
  EXPECT_EQ("CUPS_SC_STATUS_NO_RESPONSE", Name<cups_sc_status_e>(4));
  EXPECT_EQ("CUPS_SC_STATUS_BAD_MESSAGE", Name<cups_sc_status_e>(5));
  EXPECT_EQ("CUPS_SC_STATUS_TOO_BIG", Name<cups_sc_status_e>(6));
  EXPECT_EQ("CUPS_SC_STATUS_NOT_IMPLEMENTED", Name<cups_sc_status_e>(7));
}

TEST(CupsNamesTest, SideChannelStatusNamesMatchTheEnumerators) {
  EXPECT_EQ("CUPS_SC_STATUS_NONE", std::string(to_string(CUPS_SC_STATUS_NONE)));
  EXPECT_EQ("CUPS_SC_STATUS_NOT_IMPLEMENTED",
            std::string(to_string(CUPS_SC_STATUS_NOT_IMPLEMENTED)));
}

TEST(CupsNamesTest, UnknownSideChannelStatusIsUnknown) {
  EXPECT_EQ("UNKNOWN", Name<cups_sc_status_e>(8));
  EXPECT_EQ("UNKNOWN", Name<cups_sc_status_e>(-1));
  EXPECT_EQ("UNKNOWN", Name<cups_sc_status_e>(INT_MIN));
  EXPECT_EQ("UNKNOWN", Name<cups_sc_status_e>(INT_MAX));
}

TEST(CupsNamesTest, AdvanceNames) {
  EXPECT_EQ("CUPS_ADVANCE_NONE", Name<cups_adv_e>(0));
  EXPECT_EQ("CUPS_ADVANCE_FILE", Name<cups_adv_e>(1));
  EXPECT_EQ("CUPS_ADVANCE_JOB", Name<cups_adv_e>(2));
  EXPECT_EQ("CUPS_ADVANCE_SET", Name<cups_adv_e>(3));
  EXPECT_EQ("CUPS_ADVANCE_PAGE", Name<cups_adv_e>(4));
  EXPECT_EQ("cups_adv_e(5)", Name<cups_adv_e>(5));
  EXPECT_EQ("cups_adv_e(-1)", Name<cups_adv_e>(-1));
}

TEST(CupsNamesTest, BoolNames) {
  EXPECT_EQ("CUPS_FALSE", Name<cups_bool_e>(0));
  EXPECT_EQ("CUPS_TRUE", Name<cups_bool_e>(1));
  EXPECT_EQ("cups_bool_e(2)", Name<cups_bool_e>(2));
  EXPECT_EQ("cups_bool_e(-1)", Name<cups_bool_e>(-1));
}

TEST(CupsNamesTest, ColourSpaceNamesZeroToTwenty) {
  const char* const suffixes[21] = {
      "W",     "RGB",    "RGBA",   "K",      "CMY",   "YMC",    "CMYK",
      "YMCK",  "KCMY",   "KCMYcm", "GMCK",   "GMCS",  "WHITE",  "GOLD",
      "SILVER", "CIEXYZ", "CIELab", "RGBW",  "SW",    "SRGB",   "ADOBERGB"};
  for (int value = 0; value <= 20; ++value)
    EXPECT_EQ(std::string("CUPS_CSPACE_") + suffixes[value],
              Name<cups_cspace_e>(value))
        << value;
  EXPECT_EQ("CUPS_CSPACE_KCMYcm", Name<cups_cspace_e>(9));
  EXPECT_EQ("CUPS_CSPACE_CIELab", Name<cups_cspace_e>(16));
  EXPECT_EQ("CUPS_CSPACE_SW", Name<cups_cspace_e>(18));
  EXPECT_EQ("CUPS_CSPACE_ADOBERGB", Name<cups_cspace_e>(20));
}

TEST(CupsNamesTest, ColourSpaceIccNames) {
  const char* const suffixes[15] = {"ICC1", "ICC2", "ICC3", "ICC4", "ICC5",
                                    "ICC6", "ICC7", "ICC8", "ICC9", "ICCA",
                                    "ICCB", "ICCC", "ICCD", "ICCE", "ICCF"};
  for (int value = 32; value <= 46; ++value)
    EXPECT_EQ(std::string("CUPS_CSPACE_") + suffixes[value - 32],
              Name<cups_cspace_e>(value))
        << value;
  EXPECT_EQ("CUPS_CSPACE_ICC1", Name<cups_cspace_e>(32));
  EXPECT_EQ("CUPS_CSPACE_ICCF", Name<cups_cspace_e>(46));
}

TEST(CupsNamesTest, ColourSpaceDeviceNames) {
  const char* const suffixes[15] = {
      "DEVICE1", "DEVICE2", "DEVICE3", "DEVICE4", "DEVICE5",
      "DEVICE6", "DEVICE7", "DEVICE8", "DEVICE9", "DEVICEA",
      "DEVICEB", "DEVICEC", "DEVICED", "DEVICEE", "DEVICEF"};
  for (int value = 48; value <= 62; ++value)
    EXPECT_EQ(std::string("CUPS_CSPACE_") + suffixes[value - 48],
              Name<cups_cspace_e>(value))
        << value;
  EXPECT_EQ("CUPS_CSPACE_DEVICE1", Name<cups_cspace_e>(48));
  EXPECT_EQ("CUPS_CSPACE_DEVICEF", Name<cups_cspace_e>(62));
}

TEST(CupsNamesTest, ColourSpaceGapsTakeTheFallback) {
  for (int value = 21; value <= 31; ++value)
    EXPECT_EQ("cups_cspace_e(" + std::to_string(value) + ")",
              Name<cups_cspace_e>(value));
  EXPECT_EQ("cups_cspace_e(21)", Name<cups_cspace_e>(21));
  EXPECT_EQ("cups_cspace_e(31)", Name<cups_cspace_e>(31));
  EXPECT_EQ("cups_cspace_e(47)", Name<cups_cspace_e>(47));
  EXPECT_EQ("cups_cspace_e(63)", Name<cups_cspace_e>(63));
  EXPECT_EQ("cups_cspace_e(-1)", Name<cups_cspace_e>(-1));
}

TEST(CupsNamesTest, ColourSpaceNamesMatchTheEnumerators) {
  EXPECT_EQ("CUPS_CSPACE_ADOBERGB", std::string(to_string(CUPS_CSPACE_ADOBERGB)));
  EXPECT_EQ("CUPS_CSPACE_ICCF", std::string(to_string(CUPS_CSPACE_ICCF)));
  EXPECT_EQ("CUPS_CSPACE_DEVICEF", std::string(to_string(CUPS_CSPACE_DEVICEF)));
}

TEST(CupsNamesTest, CutNames) {
  EXPECT_EQ("CUPS_CUT_NONE", Name<cups_cut_e>(0));
  EXPECT_EQ("CUPS_CUT_FILE", Name<cups_cut_e>(1));
  EXPECT_EQ("CUPS_CUT_JOB", Name<cups_cut_e>(2));
  EXPECT_EQ("CUPS_CUT_SET", Name<cups_cut_e>(3));
  EXPECT_EQ("CUPS_CUT_PAGE", Name<cups_cut_e>(4));
  EXPECT_EQ("cups_cut_e(5)", Name<cups_cut_e>(5));
  EXPECT_EQ("cups_cut_e(-1)", Name<cups_cut_e>(-1));
}

TEST(CupsNamesTest, EdgeNames) {
  EXPECT_EQ("CUPS_EDGE_TOP", Name<cups_edge_e>(0));
  EXPECT_EQ("CUPS_EDGE_RIGHT", Name<cups_edge_e>(1));
  EXPECT_EQ("CUPS_EDGE_BOTTOM", Name<cups_edge_e>(2));
  EXPECT_EQ("CUPS_EDGE_LEFT", Name<cups_edge_e>(3));
  EXPECT_EQ("cups_edge_e(4)", Name<cups_edge_e>(4));
  EXPECT_EQ("cups_edge_e(-1)", Name<cups_edge_e>(-1));
}

TEST(CupsNamesTest, JogNames) {
  EXPECT_EQ("CUPS_JOG_NONE", Name<cups_jog_e>(0));
  EXPECT_EQ("CUPS_JOG_FILE", Name<cups_jog_e>(1));
  EXPECT_EQ("CUPS_JOG_JOB", Name<cups_jog_e>(2));
  EXPECT_EQ("CUPS_JOG_SET", Name<cups_jog_e>(3));
  EXPECT_EQ("cups_jog_e(4)", Name<cups_jog_e>(4));
  EXPECT_EQ("cups_jog_e(-1)", Name<cups_jog_e>(-1));
}

TEST(CupsNamesTest, OrderNames) {
  EXPECT_EQ("CUPS_ORDER_CHUNKED", Name<cups_order_e>(0));
  EXPECT_EQ("CUPS_ORDER_BANDED", Name<cups_order_e>(1));
  EXPECT_EQ("CUPS_ORDER_PLANAR", Name<cups_order_e>(2));
  EXPECT_EQ("cups_order_e(3)", Name<cups_order_e>(3));
  EXPECT_EQ("cups_order_e(-1)", Name<cups_order_e>(-1));
}

TEST(CupsNamesTest, OrientNames) {
  EXPECT_EQ("CUPS_ORIENT_0", Name<cups_orient_e>(0));
  EXPECT_EQ("CUPS_ORIENT_90", Name<cups_orient_e>(1));
  EXPECT_EQ("CUPS_ORIENT_180", Name<cups_orient_e>(2));
  EXPECT_EQ("CUPS_ORIENT_270", Name<cups_orient_e>(3));
  EXPECT_EQ("cups_orient_e(4)", Name<cups_orient_e>(4));
  EXPECT_EQ("cups_orient_e(7)", Name<cups_orient_e>(7));
  EXPECT_EQ("cups_orient_e(-1)", Name<cups_orient_e>(-1));
}

TEST(CupsNamesTest, FallbacksOfTheExtremeValues) {
  EXPECT_EQ("cups_adv_e(-2147483648)", Name<cups_adv_e>(INT_MIN));
  EXPECT_EQ("cups_bool_e(-2147483648)", Name<cups_bool_e>(INT_MIN));
  EXPECT_EQ("cups_cut_e(-2147483648)", Name<cups_cut_e>(INT_MIN));
  EXPECT_EQ("cups_edge_e(-2147483648)", Name<cups_edge_e>(INT_MIN));
  EXPECT_EQ("cups_jog_e(-2147483648)", Name<cups_jog_e>(INT_MIN));
  EXPECT_EQ("cups_order_e(-2147483648)", Name<cups_order_e>(INT_MIN));
  EXPECT_EQ("cups_adv_e(2147483647)", Name<cups_adv_e>(INT_MAX));
  EXPECT_EQ("cups_order_e(2147483647)", Name<cups_order_e>(INT_MAX));
}

TEST(CupsNamesTest, LongestFallbacksAreTwentySixCharacters) {
  const std::string cspace = Name<cups_cspace_e>(INT_MIN);
  const std::string orient = Name<cups_orient_e>(INT_MIN);
  EXPECT_EQ("cups_cspace_e(-2147483648)", cspace);
  EXPECT_EQ("cups_orient_e(-2147483648)", orient);
  EXPECT_EQ(26u, cspace.size());
  EXPECT_EQ(26u, orient.size());
}

TEST(CupsNamesTest, SecondFallbackOverwritesTheFirst) {
  const char* first = to_string(static_cast<cups_adv_e>(5));
  EXPECT_EQ("cups_adv_e(5)", std::string(first));
  const char* second = to_string(static_cast<cups_adv_e>(-1));
  EXPECT_EQ(first, second);
  EXPECT_EQ("cups_adv_e(-1)", std::string(first));
}

TEST(CupsNamesTest, KnownNameLeavesTheFallbackAlone) {
  const char* fallback = to_string(static_cast<cups_order_e>(3));
  const char* known = to_string(CUPS_ORDER_PLANAR);
  EXPECT_NE(fallback, known);
  EXPECT_EQ("cups_order_e(3)", std::string(fallback));
  EXPECT_EQ("CUPS_ORDER_PLANAR", std::string(known));
}

TEST(CupsNamesTest, AnotherOverloadLeavesTheFallbackAlone) {
  const char* adv = to_string(static_cast<cups_adv_e>(9));
  const char* cut = to_string(static_cast<cups_cut_e>(9));
  EXPECT_NE(adv, cut);
  EXPECT_EQ("cups_adv_e(9)", std::string(adv));
  EXPECT_EQ("cups_cut_e(9)", std::string(cut));
}

TEST(CupsNamesTest, EveryOverloadHasItsOwnBuffer) {
  const char* names[8] = {
      to_string(static_cast<cups_adv_e>(100)),
      to_string(static_cast<cups_bool_e>(101)),
      to_string(static_cast<cups_cspace_e>(102)),
      to_string(static_cast<cups_cut_e>(103)),
      to_string(static_cast<cups_edge_e>(104)),
      to_string(static_cast<cups_jog_e>(105)),
      to_string(static_cast<cups_order_e>(106)),
      to_string(static_cast<cups_orient_e>(107)),
  };
  const std::set<const char*> distinct(std::begin(names), std::end(names));
  EXPECT_EQ(8u, distinct.size());
  EXPECT_EQ("cups_adv_e(100)", std::string(names[0]));
  EXPECT_EQ("cups_bool_e(101)", std::string(names[1]));
  EXPECT_EQ("cups_cspace_e(102)", std::string(names[2]));
  EXPECT_EQ("cups_cut_e(103)", std::string(names[3]));
  EXPECT_EQ("cups_edge_e(104)", std::string(names[4]));
  EXPECT_EQ("cups_jog_e(105)", std::string(names[5]));
  EXPECT_EQ("cups_order_e(106)", std::string(names[6]));
  EXPECT_EQ("cups_orient_e(107)", std::string(names[7]));
}

TEST(CupsNamesTest, EachOverloadReusesItsBuffer) {
  const char* adv = to_string(static_cast<cups_adv_e>(10));
  const char* boolean = to_string(static_cast<cups_bool_e>(10));
  const char* cspace = to_string(static_cast<cups_cspace_e>(10000));
  const char* cut = to_string(static_cast<cups_cut_e>(10));
  const char* edge = to_string(static_cast<cups_edge_e>(10));
  const char* jog = to_string(static_cast<cups_jog_e>(10));
  const char* order = to_string(static_cast<cups_order_e>(10));
  const char* orient = to_string(static_cast<cups_orient_e>(10));
  EXPECT_EQ(adv, to_string(static_cast<cups_adv_e>(-7)));
  EXPECT_EQ(boolean, to_string(static_cast<cups_bool_e>(-7)));
  EXPECT_EQ(cspace, to_string(static_cast<cups_cspace_e>(-7)));
  EXPECT_EQ(cut, to_string(static_cast<cups_cut_e>(-7)));
  EXPECT_EQ(edge, to_string(static_cast<cups_edge_e>(-7)));
  EXPECT_EQ(jog, to_string(static_cast<cups_jog_e>(-7)));
  EXPECT_EQ(order, to_string(static_cast<cups_order_e>(-7)));
  EXPECT_EQ(orient, to_string(static_cast<cups_orient_e>(-7)));
  EXPECT_EQ("cups_adv_e(-7)", std::string(adv));
  EXPECT_EQ("cups_bool_e(-7)", std::string(boolean));
  EXPECT_EQ("cups_cspace_e(-7)", std::string(cspace));
  EXPECT_EQ("cups_cut_e(-7)", std::string(cut));
  EXPECT_EQ("cups_edge_e(-7)", std::string(edge));
  EXPECT_EQ("cups_jog_e(-7)", std::string(jog));
  EXPECT_EQ("cups_order_e(-7)", std::string(order));
  EXPECT_EQ("cups_orient_e(-7)", std::string(orient));
}

TEST(CupsNamesTest, ShorterFallbackLeavesNoTailOfTheLongerOne) {
  const char* first = to_string(static_cast<cups_cspace_e>(INT_MIN));
  const char* second = to_string(static_cast<cups_cspace_e>(21));
  EXPECT_EQ(first, second);
  EXPECT_EQ("cups_cspace_e(21)", std::string(second));
}

}  // namespace
