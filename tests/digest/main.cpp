// Runs every public operation over a fixed corpus and prints a line for each: its name and a hash of all that it gave
// back. Two builds of the library agree when the lines are the same: scripts/compare-digests.
#include "digest/fingerprint.h"

int main()
{
    digest::core();
    digest::topology();
    digest::spatial();
    digest::editing();
    digest::quality();
    digest::metrics();
    digest::geometry();
    digest::io();
}
