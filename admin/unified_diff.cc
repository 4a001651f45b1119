#include "admin/unified_diff.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

const size_t kContext = 3;
// Changes this many kept lines apart or fewer share one hunk.
const size_t kHunkGap = 2 * kContext;

// The lines of a text, each with its "\n" (a last line may have none).
std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    std::string_view::size_type newline = text.find('\n');
    std::string_view::size_type length =
        newline == std::string_view::npos ? text.size() : newline + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

enum class Op { Keep, Delete, Insert };

// The shortest edit script from a to b (Myers' O(ND) greedy algorithm,
// with the path traced back through the saved frontiers).
std::vector<Op> EditScript(const std::vector<std::string_view>& a,
                           const std::vector<std::string_view>& b) {
  const int n = static_cast<int>(a.size());
  const int m = static_cast<int>(b.size());
  const int offset = n + m + 1;
  std::vector<int> v(2 * offset + 1, 0);
  std::vector<std::vector<int>> trace;
  for (int d = 0; d <= n + m; ++d) {
    // Only diagonals -d-1 .. d+1 of the frontier matter for step d.
    trace.emplace_back(v.begin() + offset - d - 1, v.begin() + offset + d + 2);
    bool done = false;
    for (int k = -d; k <= d; k += 2) {
      int x = (k == -d || (k != d && v[offset + k - 1] < v[offset + k + 1]))
                  ? v[offset + k + 1]
                  : v[offset + k - 1] + 1;
      int y = x - k;
      while (x < n && y < m && a[x] == b[y]) ++x, ++y;
      v[offset + k] = x;
      if (x >= n && y >= m) {
        done = true;
        break;
      }
    }
    if (done) break;
  }
  // Walk back from (n, m): each frontier d tells how step d was reached.
  std::vector<Op> script;
  int x = n, y = m;
  for (int d = static_cast<int>(trace.size()) - 1; d >= 0; --d) {
    // The frontier before step d, diagonal k at before[k + d + 1].
    const std::vector<int>& saved = trace[d];
    auto before = [&](int k) { return saved[k + d + 1]; };
    int k = x - y;
    int prev_k;
    if (d == 0) {
      prev_k = 0;
    } else if (k == -d ||
               (k != d && before(k - 1) < before(k + 1))) {
      prev_k = k + 1;
    } else {
      prev_k = k - 1;
    }
    int prev_x = d == 0 ? 0 : before(prev_k);
    int prev_y = prev_x - prev_k;
    while (x > prev_x && y > prev_y) {
      script.push_back(Op::Keep);
      --x, --y;
    }
    if (d > 0) script.push_back(x == prev_x ? Op::Insert : Op::Delete);
    x = prev_x;
    y = prev_y;
  }
  std::reverse(script.begin(), script.end());
  return script;
}

// "l,n" as diff writes a hunk's range (l alone when n is 1; the line
// before the hunk when n is 0).
std::string Range(int start, int count) {
  if (count == 1) return std::to_string(start + 1);
  return std::to_string(count == 0 ? start : start + 1) + "," +
         std::to_string(count);
}

void AppendLine(std::string* out, char mark, std::string_view line) {
  *out += mark;
  *out += line;
  if (line.empty() || line.back() != '\n')
    *out += "\n\\ No newline at end of file\n";
}

}  // namespace

std::string UnifiedDiff(const std::string& old_name, const std::string& new_name,
                        const std::string& old_text, const std::string& new_text) {
  if (old_text == new_text) return "";
  std::vector<std::string_view> a = SplitLines(old_text);
  std::vector<std::string_view> b = SplitLines(new_text);
  std::vector<Op> script = EditScript(a, b);

  std::string out = "--- " + old_name + "\n+++ " + new_name + "\n";
  const size_t size = script.size();
  size_t i = 0;
  // Line numbers in a and b at script position i.
  int ai = 0, bi = 0;
  while (i < size) {
    if (script[i] == Op::Keep) {
      ++i, ++ai, ++bi;
      continue;
    }
    // A hunk: from kContext lines before this change to kContext lines
    // after the last change that follows within kHunkGap kept lines.
    size_t start = i;
    size_t back = 0;
    while (back < kContext && start > 0 && script[start - 1] == Op::Keep)
      --start, ++back;
    size_t end = i;
    while (true) {
      while (end < size && script[end] != Op::Keep) ++end;
      size_t keep = end;
      while (keep < size && script[keep] == Op::Keep) ++keep;
      if (keep < size && keep - end <= kHunkGap) {
        end = keep;
        continue;
      }
      end = std::min(end + kContext, keep);
      break;
    }
    int a_start = ai - static_cast<int>(back);
    int b_start = bi - static_cast<int>(back);
    int a_count = 0, b_count = 0;
    for (size_t j = start; j < end; ++j) {
      if (script[j] != Op::Insert) ++a_count;
      if (script[j] != Op::Delete) ++b_count;
    }
    out += "@@ -" + Range(a_start, a_count) + " +" + Range(b_start, b_count) +
           " @@\n";
    // Within each run of changes, the deleted lines come first.
    int x = a_start, y = b_start;
    size_t j = start;
    while (j < end) {
      if (script[j] == Op::Keep) {
        AppendLine(&out, ' ', a[x]);
        ++x, ++y, ++j;
        continue;
      }
      size_t run_end = j;
      while (run_end < end && script[run_end] != Op::Keep) ++run_end;
      int deletes = 0, inserts = 0;
      for (size_t r = j; r < run_end; ++r)
        (script[r] == Op::Delete ? deletes : inserts)++;
      for (int r = 0; r < deletes; ++r) AppendLine(&out, '-', a[x + r]);
      for (int r = 0; r < inserts; ++r) AppendLine(&out, '+', b[y + r]);
      x += deletes, y += inserts;
      j = run_end;
    }
    ai = x, bi = y;
    i = end;
  }
  return out;
}
