#pragma once
// Chief header of the shared dialogs: the real seams, bound controls, the events guard and the
// gated message box.
#include "dialogs/DBControls.h"
#include "dialogs/EventsGuard.h"
#include "dialogs/Message.h"
#include "dialogs/QtServices.h"
