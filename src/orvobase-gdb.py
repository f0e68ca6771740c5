"""Pretty printers of the orvobase classes, which gdb loads by itself with the library."""

import gdb
import gdb.printing


def list_items(qlist):
    """The items of a QList of pointers, of either generation of Qt."""
    data = qlist["d"]
    item = qlist.type.strip_typedefs().template_argument(0)
    if data.type.code == gdb.TYPE_CODE_PTR:  # Qt 5: numbers of places in an array of pointers
        places = range(int(data["begin"]), int(data["end"]))
        start = data["array"]
        return [start[i].cast(item) for i in places]
    return [data["ptr"][i] for i in range(int(data["size"]))]


class String:
    """CQSString and CQWString: the text, zero units included."""

    def __init__(self, value, length, encoding):
        self.data = value["m_pData"]
        self.length = int(value[length])
        self.encoding = encoding

    def to_string(self):
        if int(self.data) == 0 or self.length <= 0:
            return ""
        return self.data.lazy_string(encoding=self.encoding, length=self.length)

    def display_hint(self):
        return "string"


class Buffer:
    """CMLDataBuf: how full it is, and its used bytes."""

    def __init__(self, value):
        self.data = value["m_pData"]
        self.used = int(value["m_dwUsedSize"])
        self.size = int(value["m_dwMaxSize"])

    def to_string(self):
        return "%d of %d bytes used" % (self.used, self.size)

    def children(self):
        if self.used > 0:
            array = self.data.dereference().type.array(self.used - 1)
            yield "data", self.data.cast(array.pointer()).dereference()


class Active:
    """CQActive: what the scheduler looks at."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        ready = "ready" if int(self.value["m_nReady"]) == 1 else "idle"
        return "%s, %s, priority %d, status %d" % (
            self.value.dynamic_type, ready, self.value["m_nPriority"], self.value["m_nStatus"])


class Scheduler:
    """CQSchedulerInstance: the active objects by priority."""

    def __init__(self, value):
        lists = value["m_pLists"]
        low, high = lists.type.range()
        self.items = [(priority, list_items(lists[priority].dereference()))
                      for priority in range(low, high + 1) if int(lists[priority]) != 0]

    def to_string(self):
        return "%d active objects" % sum(len(items) for _, items in self.items)

    def children(self):
        for priority, items in self.items:
            for i, item in enumerate(items):
                yield "list %d [%d]" % (priority, i), item.dereference()


class TreeNode:
    """CQBTreeNodeBase: the nodes in their order for a tree's header, else the links."""

    def __init__(self, value):
        self.value = value
        root = value["m_pParent"]
        self.is_header = int(value["m_nColor"]) == 0 and (
            int(root) == 0 or root["m_pParent"] == value.address)

    def nodes(self, node):
        """In order; with a stack of its own, since a broken tree may be deep."""
        above = []
        while above or int(node) != 0:
            while int(node) != 0:
                above.append(node)
                node = node["m_pLeft"]
            node = above.pop()
            yield node
            node = node["m_pRight"]

    def to_string(self):
        if self.is_header:
            return "tree"
        return "red node" if int(self.value["m_nColor"]) == 0 else "black node"

    def children(self):
        if self.is_header:
            for i, node in enumerate(self.nodes(self.value["m_pParent"])):
                yield "[%d]" % i, node
        else:
            for link in ("m_pParent", "m_pLeft", "m_pRight"):
                yield link, self.value[link]


def register(objfile):
    printers = gdb.printing.RegexpCollectionPrettyPrinter("orvobase")
    add = printers.add_printer
    add("CQSString", "^CQSString$", lambda value: String(value, "m_nLen", "UTF-8"))
    add("CQWString", "^CQWString$", lambda value: String(value, "m_nDataLen", "UTF-32"))
    add("CMLDataBuf", "^CMLDataBuf$", Buffer)
    add("CQActive", "^CQActive$", Active)
    add("CQSchedulerInstance", "^CQSchedulerInstance$", Scheduler)
    add("CQBTreeNodeBase", "^CQBTreeNodeBase$", TreeNode)
    gdb.printing.register_pretty_printer(objfile, printers, replace=True)


register(gdb.current_objfile())
