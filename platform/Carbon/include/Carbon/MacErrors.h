// The result codes that Carbon's functions return.
#pragma once

enum { noErr = 0, nsvErr = -35, fnfErr = -43, paramErr = -50, gestaltUndefSelectorErr = -5551 };
