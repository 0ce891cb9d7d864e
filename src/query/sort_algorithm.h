// The one algorithm that decides where equal records go: a quicksort with the middle of three as
// its pivot. Any change to which elements are compared or swapped changes the order of records in
// people's files. Used by sort.cpp alone.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tabelion {

// The order gives -1, 0 or 1 for two elements; it may contradict itself. Where it can, two
// elements of which each is before the other lack the same field:
//   int operator()(a, b)      bool canContradict()      bool lackTheSame(a, b)
template <class Element, class Order>
class QuickSort {
 public:
  QuickSort(std::vector<Element>& elements, const Order& order) : e_(elements), order_(order) {}

  void run() {
    Range range{0, static_cast<std::int32_t>(e_.size()) - 1, {}};
    for (;;) {
      if (range.hi - range.lo < 3) {
        if (range.hi > range.lo) orderThree(range.lo, range.hi);
        if (waiting_ == 0) return;
        range = stack_[--waiting_];
        continue;
      }
      Range left = range;
      Range right = range;
      const std::int32_t pivot = partition(range);
      if (range.last) left.last = range.last;
      left.hi = pivot - 1;
      right.lo = pivot + 1;
      const bool left_is_larger = left.hi - left.lo > right.hi - right.lo;
      stack_[waiting_++] = left_is_larger ? left : right;
      range = left_is_larger ? right : left;
    }
  }

 private:
  // Both ends belong to it. `last`, where known: every element of the range is before any that
  // lacks the same field as this one, those among them included.
  struct Range {
    std::int32_t lo = 0;
    std::int32_t hi = 0;
    std::optional<Element> last;
  };

  void compareAndSwap(std::int32_t a, std::int32_t b) {
    if (order_(e_[a], e_[b]) > 0) std::swap(e_[a], e_[b]);
  }

  std::int32_t orderThree(std::int32_t lo, std::int32_t hi) {
    const std::int32_t mid = (lo + hi) / 2;
    compareAndSwap(lo, mid);
    compareAndSwap(lo, hi);
    compareAndSwap(mid, hi);
    return mid;
  }

  // Where the pivot is in the end. Sets the range's `last` where the part before the pivot has one.
  std::int32_t partition(Range& range) {
    const std::int32_t lo = range.lo;
    const std::int32_t end = range.hi - 1;
    std::swap(e_[orderThree(lo, range.hi)], e_[end]);
    const Element pivot = e_[end];
    if (order_.canContradict() && order_.lackTheSame(pivot, pivot)) {
      // The scan upward would run to its bound, the one downward would stop at once. Without this
      // a field that no record has yet would take quadratic time.
      if (range.last && order_.lackTheSame(pivot, *range.last)) return end;
      if (order_(e_[lo], pivot) < 0) range.last = pivot;  // no scan looks at the first one
    }
    std::int32_t i = lo;
    std::int32_t j = end;
    for (;;) {
      // The bounds matter where the order contradicts itself.
      do ++i;
      while (i < end && order_(e_[i], pivot) < 0);
      do --j;
      while (j > lo && order_(e_[j], pivot) > 0);
      if (i >= j) break;
      std::swap(e_[i], e_[j]);
    }
    std::swap(e_[i], e_[end]);
    return i;
  }

  // The smaller part is worked on first, so that each waiting one is at most half of the one below.
  static constexpr std::size_t kDepth = 32;

  std::vector<Element>& e_;
  const Order& order_;
  std::array<Range, kDepth> stack_;
  std::size_t waiting_ = 0;
};

template <class Element, class Order>
void quickSort(std::vector<Element>& elements, const Order& order) {
  QuickSort<Element, Order>(elements, order).run();
}

}  // namespace tabelion
