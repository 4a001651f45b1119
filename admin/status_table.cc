#include "admin/status_table.h"

#include "admin/duration.h"

namespace {

constexpr char kRed[] = "\033[31m";
constexpr char kYellow[] = "\033[33m";
constexpr char kPlain[] = "\033[0m";

enum Column { kQueue, kLink, kState, kLeft, kLevel, kRead, kColumns };

constexpr const char* kHeadings[kColumns] = {
    "QUEUE", "LINK", "STATE", "LEFT", "LEVEL", "READ"};

// The columns a text takes on a terminal: its UTF-8 characters.
size_t Width(const std::string& text) {
  size_t width = 0;
  for (char c : text)
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) width++;
  return width;
}

std::string Pad(const std::string& text, size_t width, bool right) {
  size_t have = Width(text);
  std::string blanks(have < width ? width - have : 0, ' ');
  return right ? blanks + text : text + blanks;
}

// The cells of one queue's line.
std::vector<std::string> Cells(const QueueStatus& s, time_t now,
                               long stale_seconds, bool* stale) {
  std::vector<std::string> cells(kColumns);
  cells[kQueue] = s.queue;
  cells[kLink] = s.scheme.empty() ? "-" : s.scheme;
  cells[kState] = StateName(s.state);
  if (s.prints_remaining && s.prints_total)
    cells[kLeft] = std::to_string(*s.prints_remaining) + "/" +
                   std::to_string(*s.prints_total);
  else
    cells[kLeft] = "-";
  cells[kLevel] = s.level_percent ? std::to_string(*s.level_percent) + "%" : "-";
  *stale = false;
  if (!s.marker_level) {
    cells[kRead] = "never";
  } else if (!s.levels_read_at) {
    cells[kRead] = "unknown";
  } else {
    long age = static_cast<long>(now - *s.levels_read_at);
    *stale = age > stale_seconds;
    cells[kRead] = ShortAge(age) + (*stale ? " stale" : " ago");
  }
  return cells;
}

}  // namespace

std::string StatusTable(const std::vector<QueueStatus>& queues, time_t now,
                        const TableStyle& style) {
  std::vector<std::vector<std::string>> rows;
  std::vector<bool> stale(queues.size());
  size_t widths[kColumns];
  for (int c = 0; c < kColumns; c++) widths[c] = Width(kHeadings[c]);
  for (size_t q = 0; q < queues.size(); q++) {
    bool is_stale = false;
    rows.push_back(Cells(queues[q], now, style.stale_seconds, &is_stale));
    stale[q] = is_stale;
    for (int c = 0; c < kColumns; c++)
      if (Width(rows.back()[c]) > widths[c]) widths[c] = Width(rows.back()[c]);
  }

  // A line of cells: LEFT and LEVEL to the right, the last one unpadded.
  auto line = [&](const std::vector<std::string>& cells, bool stale_age) {
    std::string text;
    for (int c = 0; c < kColumns; c++) {
      std::string cell = c + 1 == kColumns
                             ? cells[c]
                             : Pad(cells[c], widths[c], c == kLeft || c == kLevel);
      if (c == kRead && stale_age && style.colour)
        cell = std::string(kYellow).append(cell).append(kPlain);
      text += c + 1 == kColumns ? cell : cell + "  ";
    }
    return text + "\n";
  };

  std::string table =
      line(std::vector<std::string>(kHeadings, kHeadings + kColumns), false);
  for (size_t q = 0; q < queues.size(); q++) {
    const QueueStatus& queue = queues[q];
    table += line(rows[q], stale[q]);
    if (queue.ink_sheet) table += "  ink sheet: " + *queue.ink_sheet + "\n";
    for (const Reason& reason : queue.reasons) {
      std::string text = reason.keyword;
      if (!reason.text.empty()) text += ": " + reason.text;
      table += style.colour ? "  " + (kRed + text + kPlain) + "\n"
                            : "  " + text + "\n";
    }
  }
  return table;
}
