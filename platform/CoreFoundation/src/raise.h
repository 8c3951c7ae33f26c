// What Core Foundation raises through Cocoa.
#pragma once

[[noreturn]] void raiseOutOfMemory();
