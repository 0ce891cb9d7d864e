// The widest screen that is laid out as the phones' were, place by place. Wider ones use their
// room.
#pragma once

namespace tabelion {

inline constexpr int kWidestPhone = 400;

}  // namespace tabelion
