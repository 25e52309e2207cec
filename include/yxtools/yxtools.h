/// @file
/// Everything YXTools exports: include this header, or the header of one family.
#ifndef YXTOOLS_YXTOOLS_H
#define YXTOOLS_YXTOOLS_H

#include "yxtools/config.h"
#include "yxtools/version.h"
#include "yxtools/ss.h"
#include "yxtools/frame.h"
#include "yxtools/errorslog.h"
#include "yxtools/logfile.h"
#include "yxtools/trace.h"
#include "yxtools/registry.h"
#include "yxtools/nameprovider.h"
#include "yxtools/calendar.h"
#include "yxtools/path.h"
#include "yxtools/files.h"
#include "yxtools/memory.h"
#include "yxtools/holes.h"
#include "yxtools/concurrency.h"
#include "yxtools/intl.h"
#include "yxtools/text.h"

#endif
