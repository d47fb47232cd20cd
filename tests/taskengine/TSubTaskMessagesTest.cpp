#include "TEngineTest.h"
