// How much a busy machine is to be forgiven.
#ifndef MOSAICON_TESTS_UI_SLOWNESS_H_
#define MOSAICON_TESTS_UI_SLOWNESS_H_

// How many times longer than alone something that computes takes at the moment, because of what else wants
// the processors: 1 on an idle machine. Takes a fifth of a second times that.
double Slowness();

#endif  // MOSAICON_TESTS_UI_SLOWNESS_H_
