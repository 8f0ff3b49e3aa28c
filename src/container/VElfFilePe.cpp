// The PE side of `VElfFile`: its section records and its symbols come from the image in memory, its
// bytes from the stream, as in the other containers.
#include "container/VElfFile.h"
#include "diagnostics/ErrorState.h"

namespace Tessel::Norn::Brindle::Reader::DWARF {

bool VElfFile::ReadPEFileDwarfSections() {
    const bool isRead = mPEImage.MapPEImage(mPath, mContent) &&
                        mPEImage.CopySectionRecords(*this) && OpenForReading(mPath) == 0;
    return isRead || Fail(ELFReadErrorEnum::ELFERR_OPEN_FAILED);
}

bool VElfFile::ReadPEFileSymbolTable() {
    return mSymbolMap.IsEmpty() && mPEImage.ReadImageSymbols(mSymbolMap);
}

bool VPEImage::CopySectionRecords(VElfFile& file) const {
    for (std::size_t index = 0; index < mSections.size(); ++index) {
        file.AssignSection(mSectionNames[index], mSections[index]);
        file.mImageSections.AddPeSection(mSectionNames[index], PlacedSection(index),
                                         mSectionFacts[index].characteristics);
    }
    file.mFacts.SetSymbols(CountSymbolsInFile());
    file.mImage.machine = mMachine;
    file.mImage.is64Bit = Is64Bit();
    if (mIsDll) {
        file.mImageBase = mHeaderImageBase;
    }
    return true;
}

} // namespace Tessel::Norn::Brindle::Reader::DWARF
