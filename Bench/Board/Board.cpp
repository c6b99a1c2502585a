#include "Bench/Board/Board.h"
