// Counts how often the plugins ask for the family's wrapper registry.
#pragma once

// From here on the family answers that it has no wrapper registry, so that it is asked again each time.
void withholdRegistry();

int timesAskedForRegistry();
