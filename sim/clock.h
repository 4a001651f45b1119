// The simulator's one clock: seconds on the monotonic clock, for the waits
// and the timings of the printer on every transport.

#ifndef QUILLAROTH_SIM_CLOCK_H_
#define QUILLAROTH_SIM_CLOCK_H_

// Seconds on the monotonic clock (CLOCK_MONOTONIC), from an arbitrary start.
double monotonic_seconds();

#endif  // QUILLAROTH_SIM_CLOCK_H_
