#pragma once
// Chief header of the shared dialogs: the real seams, bound controls and the events guard.
#include "dialogs/DBControls.h"
#include "dialogs/EventsGuard.h"
#include "dialogs/QtServices.h"
