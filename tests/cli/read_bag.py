"""Prints what a bag holds as lines of text, for tst_bag to compare with the
CSV of the same frames. Reads with Debian's python3-rosbag alone: the
message classes come from the definitions stored in the bag, and the points
are unpacked from the fields each cloud declares.

    topic <name> <type> <count>
    scan <seq> <secs> <nsecs> <frame_id> <record secs> <record nsecs>
         <angle_min> <angle_max> <angle_increment> <time_increment> <scan_time>
         <range_min> <range_max>
    ranges <r>...           intensities <i>...
    cloud <seq> <secs> <nsecs> <frame_id> <record secs> <record nsecs>
          <height> <width> <point_step> <row_step> <is_bigendian> <is_dense>
    fields <name:offset:datatype:count>...
    point <value of each field>...
"""

import struct
import sys

import rosbag

# sensor_msgs/PointField datatypes
UNPACK = {1: 'b', 2: 'B', 3: 'h', 4: 'H', 5: 'i', 6: 'I', 7: 'f', 8: 'd'}


def header(msg, time):
    h = msg.header
    return [str(h.seq), str(h.stamp.secs), str(h.stamp.nsecs), h.frame_id, str(time.secs), str(time.nsecs)]


def main(path):
    with rosbag.Bag(path) as bag:
        for name, topic in sorted(bag.get_type_and_topic_info().topics.items()):
            print('topic', name, topic.msg_type, topic.message_count)
        for _, msg, time in bag.read_messages():
            if msg._type == 'sensor_msgs/LaserScan':
                print(' '.join(['scan'] + header(msg, time) + [repr(v) for v in (
                    msg.angle_min, msg.angle_max, msg.angle_increment, msg.time_increment, msg.scan_time,
                    msg.range_min, msg.range_max)]))
                print(' '.join(['ranges'] + [repr(r) for r in msg.ranges]))
                print(' '.join(['intensities'] + [repr(i) for i in msg.intensities]))
            elif msg._type == 'sensor_msgs/PointCloud2':
                print(' '.join(['cloud'] + header(msg, time) + [str(v) for v in (
                    msg.height, msg.width, msg.point_step, msg.row_step, int(msg.is_bigendian),
                    int(msg.is_dense))]))
                print(' '.join(['fields'] + ['%s:%d:%d:%d' % (f.name, f.offset, f.datatype, f.count)
                                             for f in msg.fields]))
                order = '>' if msg.is_bigendian else '<'
                for i in range(msg.width * msg.height):
                    base = i * msg.point_step
                    print(' '.join(['point'] + [
                        repr(struct.unpack_from(order + UNPACK[f.datatype], msg.data, base + f.offset)[0])
                        for f in msg.fields]))


if __name__ == '__main__':
    main(sys.argv[1])
