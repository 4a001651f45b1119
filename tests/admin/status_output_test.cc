#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "admin/status_json.h"
#include "admin/status_table.h"

namespace {

constexpr time_t kNow = 1790000000;  // 2026-09-21T14:13:20Z
constexpr char kSheet[] = "PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)";

// The four kinds of queue that status shows.
std::vector<QueueStatus> FourQueues() {
  QueueStatus good;
  good.queue = "booth-1";
  good.scheme = "usb";
  good.enabled = true;
  good.prints_remaining = 120;
  good.prints_total = 350;
  good.level_percent = 34;
  good.ink_sheet = kSheet;
  good.levels_read_at = kNow - 240;
  good.marker_level = 34;

  QueueStatus error = good;
  error.queue = "booth-2";
  error.scheme = "socket";
  error.state = QueueStatus::State::Processing;
  error.reasons = {{"com.quillaroth-error0001",
                    "Printer error 0001 - see the printer's panel"}};
  error.levels_read_at = kNow - 7300;

  QueueStatus never;
  never.queue = "spare";
  never.scheme = "usb";
  never.enabled = true;

  QueueStatus unreachable;
  unreachable.queue = "gone \"old\"";
  unreachable.scheme = "socket";
  unreachable.state = QueueStatus::State::Stopped;
  unreachable.enabled = true;
  unreachable.reasons = {{"com.quillaroth-error0023",
                          "Printer not reachable or unknown printer error"},
                         {"paused", ""}};
  unreachable.levels_read_at = kNow - 30;
  unreachable.marker_level = -2;
  return {good, error, never, unreachable};
}

// The whole table, written out.
TEST(StatusTableTest, GoldenTable) {
  EXPECT_EQ(
      "QUEUE       LINK    STATE          LEFT  LEVEL  READ\n"
      "booth-1     usb     idle        120/350    34%  4m ago\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "booth-2     socket  processing  120/350    34%  2h stale\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "  com.quillaroth-error0001: Printer error 0001 - see the printer's "
      "panel\n"
      "spare       usb     idle              -      -  never\n"
      "gone \"old\"  socket  stopped           -      -  30s ago\n"
      "  com.quillaroth-error0023: Printer not reachable or unknown printer "
      "error\n"
      "  paused\n",
      StatusTable(FourQueues(), kNow, TableStyle()));
}

TEST(StatusTableTest, ColoursReasonsAndStaleAges) {
  TableStyle style;
  style.colour = true;
  std::vector<QueueStatus> queues = {FourQueues()[1]};
  EXPECT_EQ(
      "QUEUE    LINK    STATE          LEFT  LEVEL  READ\n"
      "booth-2  socket  processing  120/350    34%  \033[33m2h stale\033[0m\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n"
      "  \033[31mcom.quillaroth-error0001: Printer error 0001 - see the "
      "printer's panel\033[0m\n",
      StatusTable(queues, kNow, style));
}

TEST(StatusTableTest, StaleAgeIsAnOption) {
  TableStyle style;
  style.stale_seconds = 60;
  std::vector<QueueStatus> queues = {FourQueues()[0]};
  EXPECT_EQ(
      "QUEUE    LINK  STATE     LEFT  LEVEL  READ\n"
      "booth-1  usb   idle   120/350    34%  4m stale\n"
      "  ink sheet: PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\n",
      StatusTable(queues, kNow, style));
}

TEST(StatusTableTest, FitsEightyColumnsForNamesOf28Characters) {
  std::vector<QueueStatus> queues = FourQueues();
  queues[0].queue = "photobooth-east-entrance-no1";
  queues[0].prints_remaining = 65535;
  queues[0].prints_total = 65535;
  queues[0].level_percent = 100;
  queues[0].state = QueueStatus::State::Processing;
  queues[0].levels_read_at = kNow - 20 * 86400;
  std::string table = StatusTable(queues, kNow, TableStyle());
  std::string first = table.substr(table.find('\n') + 1);
  first = first.substr(0, first.find('\n'));
  EXPECT_LE(first.size(), 80u) << first;
}

// The whole document, written out.
TEST(StatusJsonTest, GoldenDocument) {
  EXPECT_EQ(
      "{\"queues\": [\n"
      "  {\n"
      "    \"queue\": \"booth-1\",\n"
      "    \"scheme\": \"usb\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": 120,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 34,\n"
      "    \"ink_sheet\": \"PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\",\n"
      "    \"levels_read_at\": \"2026-09-21T14:09:20Z\",\n"
      "    \"levels_age_seconds\": 240\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"booth-2\",\n"
      "    \"scheme\": \"socket\",\n"
      "    \"state\": \"processing\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [\n"
      "      {\"keyword\": \"com.quillaroth-error0001\", \"text\": \"Printer "
      "error 0001 - see the printer's panel\"}\n"
      "    ],\n"
      "    \"prints_remaining\": 120,\n"
      "    \"prints_total\": 350,\n"
      "    \"level_percent\": 34,\n"
      "    \"ink_sheet\": \"PV-R32A(GX) 15x20(6x8\xe2\x80\xb3)\",\n"
      "    \"levels_read_at\": \"2026-09-21T12:11:40Z\",\n"
      "    \"levels_age_seconds\": 7300\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"spare\",\n"
      "    \"scheme\": \"usb\",\n"
      "    \"state\": \"idle\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": null,\n"
      "    \"levels_age_seconds\": null\n"
      "  },\n"
      "  {\n"
      "    \"queue\": \"gone \\\"old\\\"\",\n"
      "    \"scheme\": \"socket\",\n"
      "    \"state\": \"stopped\",\n"
      "    \"enabled\": true,\n"
      "    \"reasons\": [\n"
      "      {\"keyword\": \"com.quillaroth-error0023\", \"text\": \"Printer "
      "not reachable or unknown printer error\"},\n"
      "      {\"keyword\": \"paused\", \"text\": \"\"}\n"
      "    ],\n"
      "    \"prints_remaining\": null,\n"
      "    \"prints_total\": null,\n"
      "    \"level_percent\": null,\n"
      "    \"ink_sheet\": null,\n"
      "    \"levels_read_at\": \"2026-09-21T14:12:50Z\",\n"
      "    \"levels_age_seconds\": 30\n"
      "  }\n"
      "]}\n",
      StatusJson(FourQueues(), kNow));
}

TEST(StatusJsonTest, NoQueues) {
  EXPECT_EQ("{\"queues\": []}\n", StatusJson({}, kNow));
}

TEST(StatusJsonTest, StringEscapes) {
  EXPECT_EQ("\"a\\\\b\\\"c\\n\\t\\u0001\\u007f\xc3\xa9\"",
            JsonString("a\\b\"c\n\t\x01\x7f\xc3\xa9"));
}

}  // namespace
