// A library that registers nothing.
extern "C" int SilentAnswer() { return 54; }
