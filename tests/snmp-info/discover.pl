#!/usr/bin/perl
# What a management system's discovery learns of an agent through SNMP::Info
# with automatic device classing, one line per fact, sorted:
#   class CLASS
#   interface IFINDEX IFNAME
#   neighbour IFNAME SYSNAME IPV4 IPV6
# Usage: discover.pl PORT MIBDIR...   (exit 3 when SNMP::Info cannot load the
# MIB modules it needs, with the reason on standard error)
use strict;
use warnings;
use SNMP::Info;

my ( $port, @mibdirs ) = @ARGV;
my $info = eval {
    SNMP::Info->new(
        AutoSpecify       => 1,
        DestHost          => '127.0.0.1',
        RemotePort        => $port,
        Community         => 'public',
        Version           => 2,
        MibDirs           => \@mibdirs,
        IgnoreNetSNMPConf => 1,
        Retries           => 1,
        Timeout           => 2000000,
    );
};
if ( my $error = $@ ) {
    if ( $error =~ /did not load/ ) {
        print STDERR $error;
        exit 3;
    }
    die $error;
}
die "SNMP::Info found no device on port $port\n" unless $info;

my @facts = ( 'class ' . $info->class() );
my $names = $info->i_name() || {};
push @facts, "interface $_ $names->{$_}" for keys %$names;
my $lldp_if   = $info->lldp_if()          || {};
my $sysname   = $info->lldp_rem_sysname() || {};
my $ipv4      = $info->lldp_ip()          || {};
my $ipv6      = $info->lldp_ipv6()        || {};
for my $key ( keys %$lldp_if ) {
    my $interface = $names->{ $lldp_if->{$key} } // "ifIndex $lldp_if->{$key}";
    push @facts,
      join( ' ', 'neighbour', $interface, $sysname->{$key} // '-', $ipv4->{$key} // '-', $ipv6->{$key} // '-' );
}
print "$_\n" for sort @facts;
