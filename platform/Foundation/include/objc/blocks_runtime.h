// What GNUstep's headers include where the compiler has blocks.
#pragma once

#include <Block.h>
