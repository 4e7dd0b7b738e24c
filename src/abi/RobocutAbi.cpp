#include "RobocutAbi.h"
