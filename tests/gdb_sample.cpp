// What the test of the pretty printers looks at: the locals of main() when Stop() is reached.

#include <CQActive.h>
#include <CQBTreeUtil.h>
#include <CQSString.h>
#include <CQSchedulerInstance.h>
#include <CQWString.h>
#include <MLDataBuf.h>

struct Idle : CQActive {
    Idle() : CQActive(0) {}
    void DoCancel() override {}
    void RunL(int) override {}
};

void Stop() {}

int main()
{
    unsigned char bytes[] = "a\0\xC3\xA4";
    CQSString narrow, empty;
    narrow.AppendData(bytes, 4);
    CQWString wide;
    wide.SetData(L"b\u00E4\U0001F600");
    CMLDataBuf buffer;
    buffer.Create(9);
    buffer.Append(bytes, 2);
    CQSchedulerInstance scheduler(nullptr);
    Idle idle;
    idle.Complete(7);
    scheduler.Add(&idle);
    CQBTreeNodeBase header{}, root{1, &header, nullptr, nullptr}, left{0, &root, nullptr, nullptr};
    header.m_pParent = &root;
    root.m_pLeft = &left;
    Stop();
}
