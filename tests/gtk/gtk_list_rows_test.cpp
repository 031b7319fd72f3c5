#include "quilt/gtk/gtk_list_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using quilt::ListRow;
using quilt::ListRows;

// A model made for a test, with its rows.
class Rows {
public:
    explicit Rows(int32_t columns) : model(ListRows::NewModel(columns)) {}
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;
    ~Rows() { g_object_unref(model); }

    ListRows& operator*() const { return *ListRows::Of(model); }
    ListRows* operator->() const { return ListRows::Of(model); }

    std::vector<std::string> FirstTexts() const {
        std::vector<std::string> texts;
        for (int32_t row = 0; row < (*this)->GetCount(); ++row) {
            texts.emplace_back((*this)->Get(row)->GetText(0));
        }
        return texts;
    }

    GtkTreeModel* model;
};

// What a view would hear: one line per signal, with the path it names.
class Listener {
public:
    explicit Listener(GtkTreeModel* model) {
        for (const char* name : {"row-inserted", "row-changed"}) {
            g_signal_connect(model, name, G_CALLBACK(OnRow), this);
        }
        g_signal_connect(model, "row-deleted", G_CALLBACK(OnDeleted), this);
        g_signal_connect(model, "rows-reordered", G_CALLBACK(OnReordered), this);
    }

    std::vector<std::string> heard;

private:
    static std::string Name(GtkTreePath* path, const char* what) {
        gchar* text = gtk_tree_path_to_string(path);
        std::string line = std::string(what) + " " + (text != nullptr ? text : "");
        g_free(text);
        return line;
    }
    static void OnRow(GtkTreeModel*, GtkTreePath* path, GtkTreeIter*, gpointer self) {
        auto* listener = static_cast<Listener*>(self);
        listener->heard.push_back(Name(path, "row"));
    }
    static void OnDeleted(GtkTreeModel*, GtkTreePath* path, gpointer self) {
        static_cast<Listener*>(self)->heard.push_back(Name(path, "deleted"));
    }
    static void OnReordered(GtkTreeModel* model, GtkTreePath*, GtkTreeIter*, gpointer order,
                            gpointer self) {
        std::string line = "reordered";
        for (gint place = 0; place < gtk_tree_model_iter_n_children(model, nullptr); ++place) {
            line += " " + std::to_string(static_cast<gint*>(order)[place]);
        }
        static_cast<Listener*>(self)->heard.push_back(line);
    }
};

// A new text goes behind every text equal to it without regard to case.
TEST(ListRows, SortedRowsGoBehindTheirEqualsWithoutRegardToCase) {
    struct Case {
        std::vector<const char*> added;
        std::vector<int32_t> places;
        std::vector<std::string> order;
    };
    const Case cases[] = {
        {{"b", "A", "a", "B", "c"}, {0, 0, 1, 3, 4}, {"A", "a", "b", "B", "c"}},
        {{"file2", "File10", "file1", ""}, {0, 0, 0, 0}, {"", "file1", "File10", "file2"}},
        {{"x", "x", "X"}, {0, 1, 2}, {"x", "x", "X"}},
        // Folding makes letters lower case, and so puts them behind '[' and '_'.
        {{"_a", "Za", "za", "[a"}, {0, 1, 2, 0}, {"[a", "_a", "Za", "za"}},
    };
    for (const Case& c : cases) {
        Rows rows(1);
        std::vector<int32_t> places;
        for (const char* text : c.added) {
            places.push_back(rows->InsertSorted(text, 0));
        }
        EXPECT_EQ(places, c.places) << c.added[0];
        EXPECT_EQ(rows.FirstTexts(), c.order) << c.added[0];
    }
}

// Enough rows for many blocks, in a shuffled order: every place given is where the row is found,
// and the model walks the rows in the same order.
TEST(ListRows, ManyRowsKeepTheirPlaces) {
    constexpr int32_t count = 2000;
    Rows rows(1);
    std::vector<std::string> expected;
    for (int32_t number = 0; number < count; ++number) {
        std::string text = "row" + std::to_string((number * 7919) % count);
        auto at = std::upper_bound(expected.begin(), expected.end(), text);
        int32_t place = rows->InsertSorted(text, static_cast<uint32_t>(number));
        ASSERT_EQ(place, at - expected.begin()) << text;
        expected.insert(at, text);
        ASSERT_STREQ(rows->Get(place)->GetText(0), text.c_str());
    }
    EXPECT_EQ(rows.FirstTexts(), expected);

    GtkTreeIter iter;
    int32_t walked = 0;
    for (gboolean more = gtk_tree_model_get_iter_first(rows.model, &iter); more;
         more = gtk_tree_model_iter_next(rows.model, &iter), ++walked) {
        ASSERT_EQ(ListRows::At(&iter).GetText(0), expected[static_cast<size_t>(walked)]);
        GtkTreePath* path = gtk_tree_model_get_path(rows.model, &iter);
        ASSERT_EQ(gtk_tree_path_get_indices(path)[0], walked);
        gtk_tree_path_free(path);
    }
    EXPECT_EQ(walked, count);
    ASSERT_TRUE(gtk_tree_model_iter_nth_child(rows.model, &iter, nullptr, count - 1));
    ASSERT_TRUE(gtk_tree_model_iter_previous(rows.model, &iter));
    EXPECT_EQ(ListRows::At(&iter).GetText(0), expected[count - 2]);

    for (int32_t place = count - 1; place >= 0; place -= 3) {
        ASSERT_TRUE(rows->Remove(place));
        expected.erase(expected.begin() + place);
    }
    EXPECT_EQ(rows.FirstTexts(), expected);
    std::vector<int32_t> reversed(expected.size());
    for (size_t place = 0; place < reversed.size(); ++place) {
        reversed[place] = static_cast<int32_t>(reversed.size() - 1 - place);
    }
    rows->Reorder(reversed);
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(rows.FirstTexts(), expected);
    EXPECT_EQ(rows->Insert(1000, "middle", 0), 1000);
    EXPECT_STREQ(rows->Get(1000)->GetText(0), "middle");
    EXPECT_EQ(rows->Get(1001)->GetText(0), expected[1000]);
}

TEST(ListRows, RowsGoWhereTheyAreToldOrBehindTheLast) {
    Rows rows(1);
    EXPECT_EQ(rows->Insert(5, "a", 1), 0);
    EXPECT_EQ(rows->Insert(0, "b", 2), 0);
    EXPECT_EQ(rows->Insert(-1, "c", 3), 2);
    EXPECT_EQ(rows->Insert(1, "d", 4), 1);
    EXPECT_EQ(rows.FirstTexts(), (std::vector<std::string>{"b", "d", "a", "c"}));
    EXPECT_EQ(rows->Get(2)->data, 1u);
    EXPECT_EQ(rows->Get(4), nullptr);
    EXPECT_EQ(rows->Get(-1), nullptr);
    EXPECT_TRUE(rows->Remove(1));
    EXPECT_FALSE(rows->Remove(3));
    EXPECT_EQ(rows.FirstTexts(), (std::vector<std::string>{"b", "a", "c"}));
    rows->Clear();
    EXPECT_EQ(rows->GetCount(), 0);
    EXPECT_EQ(rows->Insert(0, "e", 5), 0);
}

TEST(ListRows, EachColumnKeepsItsOwnText) {
    ListRow row;
    row.SetColumnCount(4);
    row.SetText(0, "name");
    row.SetText(3, "date");
    row.SetText(1, "folder");
    row.SetText(1, "/");
    EXPECT_STREQ(row.GetText(0), "name");
    EXPECT_STREQ(row.GetText(1), "/");
    EXPECT_STREQ(row.GetText(2), "");
    EXPECT_STREQ(row.GetText(3), "date");
    EXPECT_STREQ(row.GetText(7), "");
    // A text ends at its first NUL, as the toolkit's texts do.
    row.SetText(2, std::string_view("12\0KB", 5));
    EXPECT_STREQ(row.GetText(2), "12");
    EXPECT_STREQ(row.GetText(3), "date");
    row.SetText(5, "beyond");
    EXPECT_STREQ(row.GetText(4), "");
    EXPECT_STREQ(row.GetText(5), "beyond");
    row.SetColumnCount(2);
    EXPECT_STREQ(row.GetText(1), "/");
    EXPECT_STREQ(row.GetText(2), "");
    row.SetColumnCount(3);
    EXPECT_STREQ(row.GetText(2), "");
    EXPECT_EQ(row.cells, std::string("name\0/\0\0", 8));
}

TEST(ListRows, AReorderGivesEachPlaceTheRowNamedForIt) {
    Rows rows(2);
    for (const char* text : {"a", "b", "c", "d"}) {
        rows->Insert(-1, text, static_cast<uint32_t>(text[0]));
    }
    rows->Get(1)->SetText(1, "second");
    rows->Reorder({2, 0, 3, 1});
    EXPECT_EQ(rows.FirstTexts(), (std::vector<std::string>{"c", "a", "d", "b"}));
    EXPECT_EQ(rows->Get(3)->data, static_cast<uint32_t>('b'));
    EXPECT_STREQ(rows->Get(3)->GetText(1), "second");
    rows->Reorder({0, 1});
    EXPECT_EQ(rows.FirstTexts(), (std::vector<std::string>{"c", "a", "d", "b"}));
}

TEST(ListRows, TheModelShowsTheRowsInTheirOrder) {
    Rows rows(2);
    rows->Insert(-1, "caf\xe9", 7);
    rows->Insert(-1, "b", 8);
    rows->Get(0)->SetText(1, "/home");
    rows->Get(1)->checked = true;
    rows->Get(1)->hasColour = true;
    rows->Get(1)->colour = quilt::Colour(255, 0, 16);
    GtkTreeModel* model = rows.model;
    EXPECT_EQ(gtk_tree_model_get_n_columns(model), quilt::ListRowFirstText + 2);
    EXPECT_EQ(gtk_tree_model_get_column_type(model, quilt::ListRowData), G_TYPE_UINT);
    EXPECT_EQ(gtk_tree_model_get_column_type(model, quilt::ListRowChecked), G_TYPE_BOOLEAN);
    EXPECT_EQ(gtk_tree_model_get_column_type(model, quilt::ListRowFirstText + 1), G_TYPE_STRING);
    EXPECT_EQ(gtk_tree_model_iter_n_children(model, nullptr), 2);

    GtkTreeIter iter;
    ASSERT_TRUE(gtk_tree_model_get_iter_first(model, &iter));
    guint data = 0;
    gchar* name = nullptr;
    gchar* folder = nullptr;
    gtk_tree_model_get(model, &iter, quilt::ListRowData, &data, quilt::ListRowFirstText, &name,
                       quilt::ListRowFirstText + 1, &folder, -1);
    EXPECT_EQ(data, 7u);
    EXPECT_STREQ(name, "caf\xe9");
    EXPECT_STREQ(folder, "/home");
    g_free(name);
    g_free(folder);

    ASSERT_TRUE(gtk_tree_model_iter_next(model, &iter));
    gboolean checked = FALSE;
    gchar* colour = nullptr;
    gtk_tree_model_get(model, &iter, quilt::ListRowChecked, &checked, quilt::ListRowColour, &colour,
                       -1);
    EXPECT_TRUE(checked);
    EXPECT_STREQ(colour, "#ff0010");
    g_free(colour);
    GtkTreePath* path = gtk_tree_model_get_path(model, &iter);
    EXPECT_EQ(gtk_tree_path_get_indices(path)[0], 1);
    gtk_tree_path_free(path);
    EXPECT_FALSE(gtk_tree_model_iter_next(model, &iter));

    ASSERT_TRUE(gtk_tree_model_iter_nth_child(model, &iter, nullptr, 1));
    EXPECT_EQ(ListRows::At(&iter).data, 8u);
    EXPECT_FALSE(gtk_tree_model_iter_nth_child(model, &iter, nullptr, 2));
    EXPECT_FALSE(gtk_tree_model_iter_has_child(model, &iter));
    EXPECT_EQ(ListRows::Of(nullptr), nullptr);
}

// Rows that no view shows change without a word; shown rows tell of every change.
TEST(ListRows, OnlyShownRowsTellOfTheirChanges) {
    Rows rows(1);
    Listener listener(rows.model);
    rows->Insert(-1, "a", 0);
    rows->Changed(0);
    EXPECT_TRUE(listener.heard.empty());

    rows->SetShown(true);
    rows->InsertSorted("c", 0);
    rows->InsertSorted("b", 0);
    rows->Changed(1);
    rows->Reorder({2, 1, 0});
    rows->Remove(0);
    rows->Clear();
    const std::vector<std::string> expected = {
        "row 1", "row 1", "row 1", "reordered 2 1 0", "deleted 0", "deleted 1", "deleted 0",
    };
    EXPECT_EQ(listener.heard, expected);
}

} // namespace
