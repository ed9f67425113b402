// Read by moc before each header: its parser stumbles over <compare> and <chrono> where these are
// the first of the standard headers.
#include <cstddef>
