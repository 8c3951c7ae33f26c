// Asks for a symbol of the C++ run-time library, so that mac-check refuses it.
int* made() { return new int(7); }
