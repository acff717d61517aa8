#include "foundation/initialize.h"

#include "foundation/archive.h"
#include "foundation/math_error.h"
#include "foundation/pel_error.h"
#include "foundation/resource.h"

namespace {

cc_Instantiator const* const volatile exemplars[] = {
    &ccBadPointer::sExemplar,
    &ccArchive::UnknownVersion::sExemplar,
    &ccArchive::UnknownClass::sExemplar,
    &ccArchive::EndOfData::sExemplar,
    &ccArchive::BadValue::sExemplar,
    &ccArchive::TooLarge::sExemplar,
    &cc_Resource::BrokenLock::sExemplar,
    &ccMathError::Singular::sExemplar,
    &ccShapesError::DegenerateShape::sExemplar,
    &ccShapesError::BadGeom::sExemplar,
    &ccShapesError::BadParams::sExemplar,
    &ccPelError::BadSize::sExemplar,
    &ccPelError::BadTable::sExemplar,
};

}  // namespace

// The registration itself is done by the exemplars; to name them here links them.
void cfInitializeFoundation() { static_cast<void>(exemplars[0]); }
