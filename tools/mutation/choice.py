"""Chooses which places are broken: the same for the same seed, wherever other files change."""

import collections
import hashlib
import itertools
import math

from mutation.places import KINDS


def rank(*words):
    return hashlib.sha256("\0".join(map(str, words)).encode()).digest()


def ranked(places, seed):
    """A room's places in the order in which they are tried, the kinds taking turns."""
    same = collections.Counter()
    room = places[0].room
    kinds = {kind: [] for kind in sorted(KINDS, key=lambda kind: rank(seed, room, kind))}
    for place in places:
        kinds[place.kind].append((rank(seed, *place.key, same[place.key]), place))
        same[place.key] += 1
    turns = [[place for _, place in sorted(rows, key=lambda row: row[0])]
             for rows in kinds.values()]
    return [place for turn in itertools.zip_longest(*turns) for place in turn if place]


def shares(sizes, count):
    """How many of the count each room gets: by the root of its size, so that small ones are seen."""
    count = min(count, sum(sizes.values()))
    found = collections.Counter()
    while sum(found.values()) < count:
        room = max((room for room in sizes if found[room] < sizes[room]),
                   key=lambda room: (math.sqrt(sizes[room]) / (found[room] + 0.5), room))
        found[room] += 1
    return dict(found)


class Choice:
    """Hands out places until each room has its share of those that count."""

    def __init__(self, places, seed, count):
        rooms = collections.defaultdict(list)
        for place in places:
            rooms[place.room].append(place)
        self.left = {room: collections.deque(ranked(rows, seed)) for room, rows in rooms.items()}
        self.wanted = shares({room: len(rows) for room, rows in rooms.items()}, count)
        self.order = [room for turn in range(max(self.wanted.values(), default=0))
                      for room in sorted(self.wanted) if self.wanted[room] > turn]

    def next(self):
        """The next place; None when those that are out may be the last."""
        if not self.order:
            return None
        room = self.order.pop(0)
        if not self.left[room]:
            return self.next()
        return self.left[room].popleft()

    def again(self, place):
        """A place did not count: its room gets another one."""
        self.order.insert(0, place.room)
