"""What the tests of signal_tzm for Python share."""
import unittest

import numpy as np

same = np.testing.assert_array_equal


class Case(unittest.TestCase):
    def refuses(self, *calls):
        """Each of (call, error, what it says)."""
        for call, error, text in calls:
            with self.subTest(text), self.assertRaisesRegex(error, text):
                call()
