#!/usr/bin/perl
# What a management system's discovery learns of an agent through SNMP::Info
# with automatic device classing, one line per fact, sorted:
#   class CLASS            the class SNMP::Info picks for the device
#   interface IFINDEX IFNAME
#   layers LAYERS          sysServices as SNMP::Info reads it (bit 1 first)
#   neighbour IFNAME SYSNAME IPV4 IPV6
# Usage: discover.pl PORT MIBDIR...
#
# The class SNMP::Info picks for a layer 2 or 3 device loads the MIB modules
# of every protocol it may ever ask about (routing, DSL, cable modems, ...),
# and refuses to start when one is missing; Debian ships few of them. When
# that happens, the same LLDP and interface code is asked through a class
# made of SNMP::Info and its LLDP part only, which needs the modules in the
# project's mibs/ and nothing more; the class line is still SNMP::Info's own
# choice.
use strict;
use warnings;
use SNMP::Info;
use SNMP::Info::LLDP;

# SNMP::Info serves its methods only to classes named within its own space.
package SNMP::Info::LldpOnly {
    our @ISA = qw(SNMP::Info::LLDP SNMP::Info);
    our ( %MIBS, %GLOBALS, %FUNCS, %MUNGE );
    %MIBS = (
        # SNMP::Info's own less IP-MIB, which only its IP address table
        # needs: no line printed here comes from it.
        'SNMPv2-MIB' => 'sysObjectID',
        'IF-MIB'     => 'ifIndex',
        %SNMP::Info::LLDP::MIBS,
    );
    # LLDP-EXT-MED-MIB serves only media endpoint (MED) queries, asked by
    # no line printed here.
    delete $MIBS{'LLDP-EXT-MED-MIB'};
    %GLOBALS = ( %SNMP::Info::GLOBALS, %SNMP::Info::LLDP::GLOBALS );
    %FUNCS   = ( %SNMP::Info::FUNCS,   %SNMP::Info::LLDP::FUNCS );
    %MUNGE   = ( %SNMP::Info::MUNGE,   %SNMP::Info::LLDP::MUNGE );
}

my ( $port, @mibdirs ) = @ARGV;
my %session = (
    DestHost          => '127.0.0.1',
    RemotePort        => $port,
    Community         => 'public',
    Version           => 2,
    MibDirs           => \@mibdirs,
    IgnoreNetSNMPConf => 1,
    Retries           => 1,
    Timeout           => 2000000,
);

my ( $info, $class );
$info = eval { SNMP::Info->new( %session, AutoSpecify => 1 ) };
if ( my $error = $@ ) {
    die $error unless $error =~ /did not load/;
    print STDERR "the class's own MIB modules are missing ($error); asking through its LLDP part\n";
    $info = SNMP::Info::LldpOnly->new( %session, AutoSpecify => 0 );
    die "SNMP::Info found no device on port $port\n" unless $info;
    $class = $info->device_type() // die "SNMP::Info could not class the device\n";
    eval "require $class; 1" or die $@;    ## no critic
    die "$class has no LLDP part; its answers cannot be stood in for\n" unless $class->isa('SNMP::Info::LLDP');
}
else {
    die "SNMP::Info found no device on port $port\n" unless $info;
    $class = $info->class();
}

my @facts = ( "class $class", 'layers ' . ( $info->layers() // '-' ) );
# ifName itself: some classes' i_name prefer ifAlias.
my $names = $info->orig_i_name() || {};
push @facts, "interface $_ $names->{$_}" for keys %$names;
my $lldp_if = $info->lldp_if()          || {};
my $sysname = $info->lldp_rem_sysname() || {};
my $ipv4    = $info->lldp_ip()          || {};
my $ipv6    = $info->lldp_ipv6()        || {};
for my $key ( keys %$lldp_if ) {
    my $interface = $names->{ $lldp_if->{$key} } // "ifIndex $lldp_if->{$key}";
    push @facts,
      join( ' ', 'neighbour', $interface, $sysname->{$key} // '-', $ipv4->{$key} // '-', $ipv6->{$key} // '-' );
}
print "$_\n" for sort @facts;
