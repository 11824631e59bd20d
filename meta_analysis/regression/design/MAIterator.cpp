#include "meta_analysis/regression/design/MAIterator.h"

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

namespace {

double EntryOrMissing(const std::vector<double>& values, std::size_t position)
{
    return position < values.size() ? values[position] : KXMV::Missing();
}

} // namespace

MAIterator::MAIterator(MultiPassRecordIter& source, const KXVarList& variables,
                       const std::vector<double>& effectSizes, const std::vector<double>& variances)
    : source_(&source),
      variables_(variables),
      sourceSize_(variables.Size()),
      effectSizes_(&effectSizes),
      variances_(&variances)
{
    RequireMemory(variables_.AddContVar("$effectSize$", "effect Size") != -1 &&
                  variables_.AddContVar("$variance$", "variance") != -1);
    if (!record_.Resize(static_cast<std::size_t>(sourceSize_) + 2))
        error_ = MAStatusCode::RECORD_NOT_RESIZED;
}

MAIterator::~MAIterator() = default;

bool MAIterator::Start()
{
    position_ = 0;
    return source_->Start();
}

bool MAIterator::Reset()
{
    position_ = 0;
    return source_->Reset();
}

const Record* MAIterator::Next()
{
    const Record* source = error_ == 0 ? source_->Next() : nullptr;
    if (source == nullptr)
        return nullptr;
    for (int i = 0; i < sourceSize_; ++i)
        record_.Set(i, source->Get(i));
    record_.Set(sourceSize_, EntryOrMissing(*effectSizes_, position_));
    record_.Set(sourceSize_ + 1, EntryOrMissing(*variances_, position_));
    ++position_;
    return &record_;
}

int MAIterator::GetError() const
{
    return error_ != 0 ? error_ : source_->GetError();
}

} // namespace MA_NAMESPACE
