"""The breaks that no test can see, each with its reason: tests/mutants.json."""

import json


class Known:
    def __init__(self, path):
        rows = json.loads(path.read_text())
        self.of, self.most = rows["of"], rows["most"]
        self.reasons = {(each["file"], each["within"], each["was"], each["becomes"]): each["why"]
                        for each in rows["known"]}

    def why(self, place):
        return self.reasons.get(place.key)

    def limit(self, count):
        """How many of so many may survive."""
        return -(-self.most * count // self.of)

    def gone(self, places):
        """Those that nothing in the code answers to any more."""
        there = {place.key for place in places}
        return [key for key in self.reasons if key not in there]
