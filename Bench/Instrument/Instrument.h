// The analyzer's fluidics, chemistry and optics as plain arithmetic.
#pragma once
