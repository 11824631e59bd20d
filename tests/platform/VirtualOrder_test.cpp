// The order of virtual functions, to which hosts are compiled.

#include "support/Compare.h"

#include "meta_analysis/regression/design/MADesignMatrix.h"

#include <cstring>

using namespace MA_NAMESPACE;

namespace {

#ifdef __GXX_ABI_VERSION // of the Itanium C++ ABI, where a member pointer holds the offset in the table

/// Position of a virtual function among those of its class; the destructor has the first two.
template <class Function>
std::ptrdiff_t SlotOf(Function function)
{
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &function, sizeof offset);
    return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

using Slots = std::vector<std::ptrdiff_t>;

TEST(VirtualOrder, OfTheSettingsOfRegressions)
{
    using S = KXRegSettings;
    EXPECT_EQ((Slots{SlotOf(&S::GetModelType), SlotOf(&S::IsValidSettings), SlotOf(&S::SetDependent),
                     SlotOf(&S::AddCovariate), SlotOf(&S::AddModelEffect), SlotOf(&S::Display)}),
              (Slots{2, 3, 4, 5, 6, 7}));
}

TEST(VirtualOrder, OfTheDesignMatrix)
{
    using D = MADesignMatrix;
    EXPECT_EQ((Slots{SlotOf(&D::GetRow), SlotOf(&D::Display), SlotOf(&D::Update), SlotOf(&D::CheckRecord)}),
              (Slots{2, 3, 4, 5}));
}

#endif

} // namespace
