#include "support/Compare.h"

#include "meta_analysis/regression/design/MADesignMatrix.h"

#include <cstring>

#ifdef __GXX_ABI_VERSION // of the Itanium C++ ABI, where a member pointer holds the offset in the table

namespace {

/// Positions of virtual functions among those of their class; the destructor has the first two.
template <class... Functions>
std::vector<std::ptrdiff_t> SlotsOf(Functions... functions)
{
    const auto slot = [](auto function) {
        std::ptrdiff_t offset = 0;
        std::memcpy(&offset, &function, sizeof offset);
        return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
    };
    return {slot(functions)...};
}

} // namespace

/// Hosts are compiled to these positions.
TEST(VirtualFunctions, KeepTheirOrder)
{
    using S = KXRegSettings;
    using D = MA_NAMESPACE::MADesignMatrix;
    EXPECT_EQ(SlotsOf(&S::GetModelType, &S::IsValidSettings, &S::SetDependent, &S::AddCovariate,
                      &S::AddModelEffect, &S::Display),
              (std::vector<std::ptrdiff_t>{2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(SlotsOf(&D::GetRow, &D::Display, &D::Update, &D::CheckRecord),
              (std::vector<std::ptrdiff_t>{2, 3, 4, 5}));
}

#endif
