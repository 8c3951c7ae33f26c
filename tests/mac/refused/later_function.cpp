// Asks for a function that the C library of 10.5 lacks, so that mac-check refuses it.
extern "C" unsigned long strnlen(const char* text, unsigned long most); // since 10.7

unsigned long measured(const char* text) { return strnlen(text, 10); }
