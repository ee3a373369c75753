#pragma once

#include <functional>

// The wall clock, as local days since 1899-12-30 (the fraction is the time of day), to the millisecond.
namespace vyn {

double CurrentDays();

// Puts another clock in the place of the machine's, for every thread; an empty function puts the machine's back.
// To be called while no other thread reads the clock.
void SetClockForTests(std::function<double()> clock);

}  // namespace vyn
