#pragma once

namespace brivant {

// A value moved outward to a whole step of its decade, for the first ends of an axis: 3421 becomes 4000 as a
// maximum and 2000 as a minimum, -3421 becomes -2000 and -4000. The step is 1 to 10000 above 1, and a
// hundredth to 1 up to 1. 0 stays 0, and so does what is below a hundredth.
double round_outward(double value, bool as_maximum);

} // namespace brivant
