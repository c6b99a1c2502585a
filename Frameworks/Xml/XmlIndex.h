// The element index of a document: one record of eight words an element, in segments of 65536 records, linked as a
// tree. Record 0 is the virtual record above the root. Offsets are in bytes of the document text. Only the thread of
// its document uses it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

// One element.
struct XmlRecord {
    std::uint32_t start;            // offset of the "<" of the start tag
    std::uint32_t length;           // of the whole element, end tag included
    std::uint32_t tagLengths;       // start tag in the low 22 bits, end tag in the high 10; see SetTagLengths
    std::uint32_t flags;            // nesting depth in the low 16 bits, then the flags below
    std::uint32_t parent;           // links are record numbers, 0 for none
    std::uint32_t firstChild;       // 0 if there is none
    std::uint32_t nextSibling;      // 0 for the last
    std::uint32_t previousSibling;  // the first child's points to the last child
};
static_assert(sizeof(XmlRecord) == 32);

class XmlIndex {
public:
    static constexpr std::uint32_t DepthMask = 0xFFFF;  // deeper elements keep this depth
    static constexpr std::uint32_t FirstChildFlag = 1U << 19;
    static constexpr std::uint32_t NoEndTagFlag = 1U << 20;
    static constexpr std::uint32_t IllFormedInsideFlag = 1U << 21;
    static constexpr std::uint32_t IllFormedFlag = 1U << 23;

    // Releases everything and makes room for about `capacity` records; record 0 then exists and is clear.
    void Reset(std::size_t capacity);
    // Releases everything, record 0 too.
    void Clear();
    bool Exists() const { return !m_segments.empty(); }
    std::uint32_t NextFree() const { return m_nextFree; }

    XmlRecord& At(std::uint32_t index) { return m_segments[index >> SegmentShift][index & SegmentMask]; }
    const XmlRecord& At(std::uint32_t index) const { return m_segments[index >> SegmentShift][index & SegmentMask]; }

    // A record from the freed chain, or the first unused one. Its words are clear except start and length.
    std::uint32_t Take(std::uint32_t start, std::uint32_t length);

    // The only access to the tag lengths: lengths that do not fit their bits are kept in a separate table.
    void SetTagLengths(std::uint32_t index, std::uint32_t startTag, std::uint32_t endTag);
    std::uint32_t StartTagLength(std::uint32_t index) const;
    std::uint32_t EndTagLength(std::uint32_t index) const;

    std::uint32_t End(std::uint32_t index) const { return At(index).start + At(index).length; }
    bool IsFirstChild(std::uint32_t index) const { return (At(index).flags & FirstChildFlag) != 0; }
    // 0 without children.
    std::uint32_t LastChild(std::uint32_t parent) const;
    // The sibling before it, 0 for the first child.
    std::uint32_t Previous(std::uint32_t index) const { return IsFirstChild(index) ? 0 : At(index).previousSibling; }

    // For the parse: an unused record after `previous`, the last child of `parent` (0: no child yet).
    std::uint32_t AddLast(std::uint32_t parent, std::uint32_t previous, std::uint32_t start, std::uint32_t startTag);
    // Links the record after the sibling `previous`; 0 makes it the first child.
    void LinkAfter(std::uint32_t parent, std::uint32_t previous, std::uint32_t index);
    // Removes the record from its parent's children and releases it with its subtree.
    void Remove(std::uint32_t index);
    // The children of `from`, which is the last child of its parent, become its following siblings. Adopt and
    // RenumberDepths correct their parent links and depths later, so that a long chain of such moves stays linear.
    void LiftChildren(std::uint32_t from);
    // Makes `parent` the parent of `first` and all siblings that follow it.
    void Adopt(std::uint32_t parent, std::uint32_t first);
    // Recomputes every depth.
    void RenumberDepths();

    // The record is ill-formed, and everything above it holds something ill-formed.
    void MarkIllFormed(std::uint32_t index);
    void MarkIllFormedInside(std::uint32_t index);

    // Moves all elements that start at or after `offset` by `change` bytes.
    void Shift(std::uint32_t offset, std::int64_t change);
    // Lengthens `index` and all records above it.
    void Lengthen(std::uint32_t index, std::int64_t change);

private:
    static constexpr unsigned SegmentShift = 16;
    static constexpr std::uint32_t SegmentRecords = 1U << SegmentShift;
    static constexpr std::uint32_t SegmentMask = SegmentRecords - 1;
    static constexpr std::uint32_t FirstPart = SegmentRecords / 4;  // of a new segment

    struct LongTags {
        std::uint32_t start;
        std::uint32_t end;
    };

    void MakeRoom();
    void Release(std::uint32_t index);
    std::uint32_t NextInTree(std::uint32_t index) const;
    std::uint32_t DepthBelow(std::uint32_t parent) const;

    std::vector<std::unique_ptr<XmlRecord[]>> m_segments;
    std::size_t m_capacity = 0;   // records expected by the parse
    std::size_t m_allocated = 0;  // records with memory
    std::uint32_t m_nextFree = 1;
    std::uint32_t m_freed = 0;  // chain of released records through their next sibling
    std::map<std::uint32_t, LongTags> m_longTags;
};
