// libiberty's demangler and lbasename. The C library already declares
// basename; libiberty must not declare it again.
#pragma once

#ifndef HAVE_DECL_BASENAME
#define HAVE_DECL_BASENAME 1
#endif
#include "demangle.h"
#include "libiberty.h"
