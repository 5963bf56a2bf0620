#pragma once

/// Everything a caller of the library needs.

#include "api/quvex.h"
#include "api/qvexception.h"
#include "api/qvexpression.h"
#include "api/qvmodel.h"
#include "api/qvoperator.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvsolution.h"
#include "api/qvstate.h"
#include "api/qvstatistics.h"
#include "api/qvversion.h"
