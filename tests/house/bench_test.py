"""The rows of bench/rows.py are whole, and bench/check tells a build that has become slower."""
import contextlib
import importlib.machinery
import importlib.util
import io
import os
import sys
import unittest

BENCH = sys.argv.pop(1)
sys.dont_write_bytecode = True
sys.path.insert(0, BENCH)
import rows


def script(name):
    """A program without a suffix, as a module."""
    loader = importlib.machinery.SourceFileLoader(name, os.path.join(BENCH, name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    loader.exec_module(module)
    return module


check, report = script('check'), script('report')


class Rows(unittest.TestCase):
    def test_each_row_beside_a_peer_shows_how_it_grows(self):
        self.assertEqual([row.title for row in rows.ROWS if not rows.growths_of(row.title)], [])

    def test_growth_is_of_a_row_that_exists(self):
        titles = {row.title for row in rows.ROWS}
        self.assertEqual([growth.title for growth in rows.GROWTH if growth.of and growth.of not in titles], [])

    def test_amounts_are_once_ten_and_a_hundred_times(self):
        for growth in rows.GROWTH:
            once = growth.amounts[0]
            self.assertEqual(growth.amounts, (once, 10 * once, 100 * once), growth.title)

    def test_a_plot_has_a_colour_for_each_curve(self):
        areas = [growth.area for growth in rows.GROWTH]
        self.assertLessEqual(max(map(areas.count, areas)), len(report.COLOURS))

    def test_reasons_belong_to_rows(self):
        for begin in rows.REASONS:
            self.assertTrue(any(row.title.startswith(begin) for row in rows.ROWS), begin)


class Report(unittest.TestCase):
    def remarks(self, times, remark=None):
        row = rows.Growth('area', 'work', 'points', 'program', 'name', (10, 100, 1000), remark)
        return report.growth_remarks([(row, times)])

    def test_what_outgrows_its_work_is_remarked_on(self):
        self.assertEqual(self.remarks([1, 14, 200]), [])  # by less than the logarithm
        self.assertEqual(self.remarks([1, 10, 350]), ['- work: not explained yet.'])
        self.assertEqual(self.remarks([50, 60, 1000]), ['- work: not explained yet.'])  # which the first cost hides
        self.assertEqual(self.remarks([1, 10, 350], 'why.'), ['- work: why.'])
        self.assertEqual(self.remarks([1, 10, 110], 'why.'), [])

    def test_a_missed_aim_without_a_reason_shows(self):
        self.assertEqual(report.reasons(['Region union', 'Region difference', 'work']),
                         [f'- Region union: {rows.REASONS["Region union"]}', '- Region difference: as for the union.',
                          '- work: not explained yet.'])


class Fake:
    """A row whose figures are given for each build, call after call; the last ones again and again."""

    def __init__(self, **figures):
        self.title = 'work'
        self.figures = {build: list(each) if isinstance(each, list) else [each] for build, each in figures.items()}
        self.calls = 0

    def measure_ours(self, build):
        self.calls += 1
        left = self.figures[build]
        figures = left.pop(0) if len(left) > 1 else left[0]
        if figures is None:
            raise RuntimeError('no such benchmark')
        return figures


class Check(unittest.TestCase):
    def compare(self, *table):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            passed = check.compare(table, 'new', 'base')
        return passed, printed.getvalue()

    def test_slower_than_the_limit_fails_and_is_run_again_first(self):
        row = Fake(new={'': 1.2}, base={'': 1.0})
        passed, printed = self.compare(row)
        self.assertFalse(passed)
        self.assertIn('1.20  WORSE', printed)
        self.assertEqual(row.calls, 2 * 5 + 2 * 15)
        self.assertTrue(self.compare(Fake(new={'': 1.1}, base={'': 1.0}))[0])

    def test_noise_is_outvoted(self):
        self.assertTrue(self.compare(Fake(new=[{'': 9.0}] * 2 + [{'': 1.0}], base={'': 1.0}))[0])
        self.assertTrue(self.compare(Fake(new=[{'': 2.0}] * 5 + [{'': 1.0}], base={'': 1.0}))[0])  # all of the first run

    def test_growth_counts_unless_only_the_small_amount_is_cheaper(self):
        def figures(once, largest):
            return rows.costs_and_growth(rows.GROWTH[0], [once, 1.0, largest])

        base = figures(1.0, 100.0)
        for once, largest, passes in ((1.0, 100.0, True), (1.0, 120.0, False), (0.8, 110.0, False), (0.8, 100.0, True),
                                      (1.3, 114.0, True)):
            self.assertEqual(self.compare(Fake(new=figures(once, largest), base=base))[0], passes, (once, largest))

    def test_what_can_not_be_run(self):
        good = Fake(new={'': 1.0}, base={'': 1.0})
        self.assertTrue(self.compare(good, Fake(new={'': 1.0}, base=None))[0])
        self.assertFalse(self.compare(good, Fake(new=None, base={'': 1.0}))[0])
        self.assertFalse(self.compare()[0])


if __name__ == '__main__':
    unittest.main()
