// The number of every exception. A definition finds its number here by the name of its class, so that a class without a row
// does not compile. Numbers are transmitted and shown to users: a row never changes once a release has had it.
#pragma once

#include <string_view>

struct cs_ExceptionRange {
  long first, last;
  std::string_view owners;  // the folders whose classes have numbers in it
};

inline constexpr cs_ExceptionRange cf_exceptionRanges[] = {
    {0x10000100, 0x100001FF, "foundation"},
    {0x10000900, 0x1000099F, "backend"},  // pools of surfaces
    {0x10000A00, 0x10000AFF, "acquisition"},
    {0x10000F00, 0x10000FFF, "tests"},  // their rows stand in the tests
    {0x10002A00, 0x10002AFF, "canvas"},
    {0x10002B00, 0x10002BFF, "canvas ui"},
    {0x10004500, 0x100045FF, "ui backend"},
};

struct cs_ExceptionNumber {
  long number;
  std::string_view name;  // of the class
};

inline constexpr cs_ExceptionNumber cf_exceptionNumbers[] = {
    {0x10000101, "ccBadPointer"},
    {0x10000110, "ccArchive::UnknownVersion"},
    {0x10000111, "ccArchive::UnknownClass"},
    {0x10000112, "ccArchive::EndOfData"},
    {0x10000113, "ccArchive::BadValue"},
    {0x10000114, "ccArchive::TooLarge"},
    {0x10000120, "cc_Resource::BrokenLock"},
    {0x10000130, "ccMathError::Singular"},
    {0x10000140, "ccShapesError::DegenerateShape"},
    {0x10000141, "ccShapesError::BadGeom"},
    {0x10000142, "ccShapesError::BadParams"},
    {0x10000160, "ccPelError::BadSize"},
    {0x10000161, "ccPelError::BadTable"},
    {0x10002B20, "ccUIError::BadKeyValue"},
    {0x10002B21, "ccUIError::BadParams"},
    {0x10002B22, "ccUIError::InitFailed"},
    {0x10002B23, "ccUIError::InvalidColorMapSize"},
    {0x10002B24, "ccUIError::NotAvailable"},
    {0x10002B25, "ccUIError::NotEnabled"},
    {0x10002B26, "ccUIError::NotImplemented"},
    {0x10004512, "ccWin32Display::OverlayLayerNotEnabled"},
    {0x10004514, "cc_CacheMap::InvalidColorMap"},
    {0x10004518, "ccDisplay::BadFifo"},
};

// Kept for classes to come. A row moves up when its class is defined.
inline constexpr cs_ExceptionNumber cf_keptExceptionNumbers[] = {
    {0x10000150, "ccSocket::Timeout"},
    {0x10000151, "ccSocket::Disconnected"},
    {0x10000152, "ccSocket::NotConnected"},
    {0x10000158, "ccCommunicator::BadAddress"},
    {0x10000997, "ccDirectDrawSurfacePool::NoSurface"},
    {0x10000998, "ccDirectDrawSurfacePool::NotSupported"},
    {0x1000099C, "ccDirectDrawSurfacePool::FifoInitFailed"},
    {0x10000A01, "ccAcqError::Failed"},
    {0x10002B05, "ccUIStdInvalidParam"},
    {0x10002B10, "ccMenu::cycleDetected"},
    {0x10002B11, "ccMenu::noCommonParent"},
    {0x10004500, "ccRemoteHostDisplay::ChannelInUse"},
    {0x10004501, "ccRemoteHostDisplay::InvalidChannel"},
    {0x10004502, "ccRemoteHostDisplay::InvalidParam"},
    {0x10004503, "ccRemoteHostDisplay::NotConnected"},
    {0x10004504, "ccRemoteHostDisplay::InvalidWindow"},
    {0x10004511, "ccRemoteHostDisplay::NotSupported"},
};

// For constants only: without a row the throw is reached, which no compiler takes in a constant.
constexpr long cf_exceptionNumber(std::string_view name)
{
  for (cs_ExceptionNumber const& row : cf_exceptionNumbers)
    if (row.name == name)
      return row.number;
  throw "the class has no row in cf_exceptionNumbers";
}
