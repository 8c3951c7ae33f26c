// Error numbers.
#pragma once

#include <sys/cdefs.h>

__BEGIN_DECLS
int* __error(void);
__END_DECLS

#define errno (*__error())
#define EINVAL 22
#define EDOM 33
#define ERANGE 34
#define EILSEQ 92
