#include "screens/kit/row_colors.h"

#include <cstddef>

namespace tabelion {
namespace {

constexpr Color kBlack{0, 0, 0};
constexpr Color kWhite{255, 255, 255};

// In the order of Scheme.
constexpr RowColors kRowColors[] = {
    {{64, 188, 255}, kBlack, {224, 224, 224}, kWhite, kBlack, {64, 64, 64}},
    {{28, 92, 143}, kWhite, {38, 47, 56}, {20, 25, 31}, {230, 235, 240}, {180, 191, 202}},
    {{255, 227, 77}, kBlack, {236, 236, 236}, kWhite, kBlack, kBlack},
    {{255, 255, 0}, kBlack, {30, 30, 30}, kBlack, kWhite, kWhite},
};

}  // namespace

const RowColors& RowColorsOf(Scheme scheme) {
  return kRowColors[static_cast<std::size_t>(scheme)];
}

}  // namespace tabelion
