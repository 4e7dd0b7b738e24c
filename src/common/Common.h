#pragma once
// Chief header of the shared helpers: conversions, text formatting and the seams.
#include "common/Convert.h"
#include "common/FileNames.h"
#include "common/Format.h"
#include "common/HostApplication.h"
#include "common/Platform.h"
#include "common/Services.h"
#include "common/Ui.h"
